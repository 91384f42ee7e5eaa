// Says which records of a data set file occur in texts.
//
//   scan [-m N] DATASET TEXT...
//
// prints a line for each record and text in which a key field of the record and at least N fields
// in all occur: 2 if not said, or 1 when records have one field. TEXT is a file of UTF-8, or - for
// standard input. The exit status is 0 when a record was found, 1 when none was, 2 after a fault;
// after a fault of one text, the others are scanned all the same. docs/scanning.md tells the rules.

#include "report.hpp"
#include "text_file.hpp"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <limits>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>

#include <unistd.h>

namespace {

enum Exit_status { SOMETHING_FOUND = 0, NOTHING_FOUND = 1, FAULT = 2 };

constexpr const char* USAGE = "usage: scan [-m N] DATASET TEXT...";

// From 1 up; more than fit is more than there are fields.
std::size_t least_from(std::string_view argument) {
    std::size_t least = 0;
    const char* const end = argument.data() + argument.size();
    const auto [read, error] = std::from_chars(argument.data(), end, least);
    if (read != end || least == 0) {
        if (error != std::errc::result_out_of_range || read != end) {
            throw std::invalid_argument(USAGE);
        }
        least = std::numeric_limits<std::size_t>::max();
    }
    return least;
}

void tell(const std::exception& fault) {
    std::fprintf(stderr, "%s\n", fault.what());
}

// A fault of the text alone is told and does not end the scan.
Exit_status scan_text(scan::Data_set& data_set, const std::string& name, std::size_t least) {
    try {
        const std::u16string text = scan::read_text(name);
        try {
            return scan::report_text(data_set, name, text, least) ? SOMETHING_FOUND : NOTHING_FOUND;
        } catch (const std::length_error&) {
            throw scan::File_fault(name, "more than 15,000,000 words and marks; split it");
        } catch (const std::bad_alloc&) {
            throw scan::File_fault(name, "there is not enough memory for it");
        }
    } catch (const scan::File_fault& fault) {
        tell(fault);
        return FAULT;
    }
}

Exit_status run(int argument_count, char** arguments) {
    std::optional<std::size_t> least;
    opterr = 0; // the usage says it
    for (int option = 0; (option = getopt(argument_count, arguments, "m:")) != -1;) {
        if (option != 'm') throw std::invalid_argument(USAGE);
        least = least_from(optarg);
    }
    const std::span<char*> operands(arguments + optind, arguments + argument_count);
    if (operands.size() < 2) throw std::invalid_argument(USAGE);
    scan::Data_set data_set(operands.front());
    const std::size_t usual = std::min<std::size_t>(data_set.fields().size(), 2);
    Exit_status status = NOTHING_FOUND;
    for (const char* name : operands.subspan(1)) {
        const Exit_status of_text = scan_text(data_set, name, least.value_or(usual));
        if (of_text == FAULT || status == NOTHING_FOUND) status = of_text;
    }
    scan::finish_output();
    return status;
}

} // namespace

int main(int argument_count, char** arguments) {
    try {
        return run(argument_count, arguments);
    } catch (const std::exception& fault) {
        tell(fault);
        return FAULT;
    }
}
