// Looks values up in a data set file.
//
//   lookup FILE KEY [VALUE]
//
// prints how many records have the value in the key field, and at which offsets they stand in the
// file. Without VALUE, the values are the lines of standard input, and each gives a line. The exit
// status is 0 when every value was found, 1 when one was not, 2 after an error.

#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/read/tla_data_set_connector_file.hpp"

#include <algorithm>
#include <iostream>
#include <stdexcept>

namespace {

enum Exit_status { ALL_FOUND = 0, NOT_FOUND = 1, FAULT = 2 };

using Entries = std::vector<std::unique_ptr<tla::Tla_data_set_entry_file>>;

std::u16string wide(std::string_view narrow) {
    std::u16string text;
    scl::scl_stow(narrow, text);
    return text;
}

// Ends the program with the status's messages, if it has failed.
void check(const scl::Scl_status& status) {
    if (status.ok()) return;
    std::u16string text;
    scl::Scl_status_lookup::to_string(status, text);
    std::string message;
    scl::scl_wtos(text, message, true);
    throw std::runtime_error(message);
}

class Lookup {
public:
    Lookup(std::string_view file, std::string_view key) : key_(wide(key)) {
        scl::Scl_status status;
        connector_.set_parameter("DataFileName", wide(file), status);
        connector_.open(status);
        if (!status.has_failed()) connector_.load(status, false);
        check(status);
        const auto keys = connector_.key_names();
        if (std::ranges::find(keys, key_) == keys.end()) {
            throw std::runtime_error("no such key: " + std::string(key));
        }
    }

    // Prints a line for the value; false when no record has it.
    bool print(std::string_view value) {
        scl::Scl_status status;
        Entries entries;
        const std::u16string text = wide(value);
        connector_.find_entries({0, text.c_str()}, key_, entries, status);
        check(status);
        std::cout << entries.size();
        for (const auto& entry : entries) {
            std::cout << ' ' << entry->record_offset();
        }
        std::cout << '\n';
        return !entries.empty();
    }

private:
    std::u16string key_;
    tla::Tla_data_set_connector_file connector_;
};

Exit_status run(int argument_count, char** arguments) {
    if (argument_count != 3 && argument_count != 4) {
        throw std::runtime_error("usage: lookup FILE KEY [VALUE]");
    }
    Lookup lookup(arguments[1], arguments[2]);
    if (argument_count == 4) return lookup.print(arguments[3]) ? ALL_FOUND : NOT_FOUND;
    bool all_found = true;
    for (std::string value; std::getline(std::cin, value);) {
        all_found = lookup.print(value) && all_found;
    }
    return all_found ? ALL_FOUND : NOT_FOUND;
}

} // namespace

int main(int argument_count, char** arguments) {
    try {
        return run(argument_count, arguments);
    } catch (const std::exception& fault) {
        std::cerr << fault.what() << '\n';
        return FAULT;
    }
}
