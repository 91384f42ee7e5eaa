// Looks a value up in a data set file, and tells what else the records found have in common with
// it.
//
//   lookup FILE KEY VALUE
//
// prints where the records with the value in the key field stand in the file, and how many words
// and marks each of their fields has. dslookup is the program for every day; this one shows the
// library.

#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/read/tla_data_set_connector_file.hpp"

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::u16string wide(std::string_view narrow) {
    std::u16string text;
    scl::scl_stow(narrow, text);
    return text;
}

std::string narrow(std::u16string_view wide) {
    std::string text;
    scl::scl_wtos(wide, text, true);
    return text;
}

// Names come from the file: what is shown of them must not steer the terminal.
std::string shown(std::u16string_view name) {
    return narrow(scl::scl_shown(name));
}

// Operations that can fail leave what went wrong in a status.
void check(const scl::Scl_status& status) {
    if (!status.has_failed()) return;
    std::u16string text;
    scl::Scl_status_lookup::to_string(status, text);
    throw std::runtime_error(narrow(text)); // the arguments in it are shown so already
}

void load(tla::Tla_data_set_connector_file& connector, std::string_view name) {
    scl::Scl_status status;
    connector.set_parameter("DataFileName", wide(name), status);
    connector.open(status);
    if (!status.has_failed()) connector.load(status, false);
    check(status);
}

void print_record(tla::Tla_data_set_connector_file& connector, std::int64_t offset) {
    scl::Scl_status status;
    const auto entry = connector.read_entry(offset, status);
    check(status);
    std::cout << "record " << offset << ":";
    std::vector<std::uint64_t> values;
    for (std::size_t i = 0; entry->values_of(i, values); ++i) {
        std::cout << ' ' << shown(connector.field_descriptors()[i].name) << ' ' << values.size();
    }
    std::cout << '\n';
}

// Returns how many records were found.
std::size_t look_up(std::string_view name, std::string_view key, std::string_view value) {
    tla::Tla_data_set_connector_file connector;
    load(connector, name);
    const std::vector<std::u16string> keys = connector.key_names();
    const auto place = std::ranges::find(keys, wide(key));
    if (place == keys.end()) throw std::runtime_error("no such key: " + scl::scl_shown(key));
    scl::Scl_status status;
    std::vector<std::int64_t> offsets;
    connector.find_records(scl::scl_trimmed(wide(value)),
                           static_cast<std::size_t>(place - keys.begin()), offsets, status);
    check(status);
    for (const std::int64_t offset : offsets) {
        print_record(connector, offset);
    }
    return offsets.size();
}

} // namespace

int main(int argument_count, char** arguments) {
    try {
        if (argument_count != 4) throw std::runtime_error("usage: lookup FILE KEY VALUE");
        return look_up(arguments[1], arguments[2], arguments[3]) != 0 ? 0 : 1;
    } catch (const std::exception& fault) {
        std::cerr << fault.what() << '\n';
        return 2;
    }
}
