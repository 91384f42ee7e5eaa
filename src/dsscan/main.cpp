// dsscan: says which records of a data set file occur in texts. options.cpp says how it is called.

#include "options.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"
#include "shown.hpp"
#include "text_scanner.hpp"

#include <cstdio>
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>

namespace dsscan {

namespace {

enum Exit_status { SOMETHING_FOUND = 0, NOTHING_FOUND = 1, FAULT = 2 };

// Messages of the library are UTF-16; bytes of a name that are no UTF-8 come out as they came in.
std::string message_of(const scl::Scl_status& status) {
    std::u16string text;
    scl::Scl_status_lookup::to_string(status, text);
    std::string message;
    scl::scl_wtos(text, message, true);
    return message;
}

// The library's message speaks of the schema, which a user of the file may never have seen.
std::string message_of_keys(const Options& options, const tla::Tla_scan_index& index) {
    std::string message = "-k names no field of it; its fields:";
    for (const tla::Field_descriptor& field : index.fields()) {
        std::string name;
        scl::scl_wtos(field.name, name, true);
        message += ' ' + shown_in_line(name);
    }
    return shown_name(options.data_set) + ": " + message;
}

// What is wrong with the file or the keys is told before any text is opened.
std::unique_ptr<const tla::Tla_scan_index> open_index(const Options& options) {
    std::u16string name;
    scl::scl_stow(options.data_set, name);
    scl::Scl_status status;
    auto index = tla::Tla_scan_index::open(name, options.keys, status);
    // Opened once more without the keys, to name the fields that there are.
    if (status == tla::TLA_STATUS_KEY_NAME) {
        status.clear();
        index = tla::Tla_scan_index::open(name, {}, status);
        if (!status.has_failed()) throw std::runtime_error(message_of_keys(options, *index));
    }
    const std::string shown = shown_name(options.data_set);
    if (status.has_failed()) throw std::runtime_error(shown + ": " + message_of(status));
    if (options.least.value_or(1) > index->fields().size()) {
        throw std::runtime_error("-m " + std::to_string(*options.least) + ": the records of " +
                                 shown + " have " + std::to_string(index->fields().size()) +
                                 (index->fields().size() == 1 ? " field" : " fields"));
    }
    return index;
}

Exit_status scan_texts(const Options& options) {
    const auto index = open_index(options);
    Text_scanner scanner(options, *index);
    for (const char* const text : options.texts) {
        if (!scanner.scan(text)) break;
    }
    scanner.finish();
    // Who asks quietly wants to know one thing alone.
    const bool fault_counts = options.format != Format::nothing || !scanner.has_found();
    if (scanner.had_fault() && fault_counts) return FAULT;
    return scanner.has_found() ? SOMETHING_FOUND : NOTHING_FOUND;
}

// Help that could not be written was not shown.
Exit_status run(int argument_count, char** arguments) {
    if (const auto options = parse_options(argument_count, arguments)) return scan_texts(*options);
    if (std::fflush(stdout) != 0) throw std::runtime_error("standard output: cannot be written");
    return SOMETHING_FOUND;
}

} // namespace

} // namespace dsscan

int main(int argument_count, char** arguments) {
    try {
        return dsscan::run(argument_count, arguments);
    } catch (const std::bad_alloc&) {
        std::fputs("dsscan: There is not enough memory.\n", stderr);
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "%s\n", fault.what());
    }
    return dsscan::FAULT;
}
