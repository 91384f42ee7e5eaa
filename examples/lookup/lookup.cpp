// Looks values up in a data set file.
//
//   lookup FILE [KEY [VALUE]]
//
// prints how many records have the value in the key field, and at which offsets they stand in the
// file. Without VALUE, the values are the lines of standard input, and each gives a line. Without
// KEY, it checks the file and says what is in it. White space around a value does not count. The
// exit status is 0 when every value was found, 1 when one was not, 2 after a fault.

#include "records/values/tla_formatters.hpp"
#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"
#include "scl/text/scl_utf.hpp"
#include "tla/read/tla_data_set_connector_file.hpp"
#include "txt/txt_token_types.hpp"
#include "txt/txt_token_walk.hpp"

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

enum Exit_status { ALL_FOUND = 0, NOT_FOUND = 1, FAULT = 2 };

std::u16string wide(std::string_view narrow) {
    std::u16string text;
    scl::scl_stow(narrow, text);
    return text;
}

std::string counted(std::uint64_t count, std::string_view noun) {
    return std::to_string(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

// So that nothing that is shown steers a terminal.
std::string shown(std::u16string_view text) {
    std::string narrow;
    scl::scl_wtos(scl::scl_shown(text), narrow, true);
    return narrow;
}

// By the steps that a record's field goes through when a file is built.
std::vector<std::uint64_t> token_values(std::u16string_view value,
                                        const tla::Formatter_type_id& type) {
    std::vector<std::uint64_t> values;
    const auto formatter = tla::tla_create_formatter(type);
    if (formatter == nullptr) return values;
    std::u16string form;
    formatter->format(scl::scl_trimmed(value), form, false);
    txt::txt_walk_tokens(
        scl::scl_span_of(form), [&values](const char16_t* begin, const char16_t* end) {
            values.push_back(txt::txt_token_value(scl::Scl_text_span<char16_t>{begin, end}));
        });
    return values;
}

// A loaded file. Faults are thrown, and begin with the file's name.
class Data_set {
public:
    explicit Data_set(std::string_view name) : name_(wide(name)) {
        scl::Scl_status status;
        connector_.set_parameter("DataFileName", name_, status);
        connector_.open(status);
        if (!status.has_failed()) connector_.load(status, false);
        check(status);
        keys_ = connector_.key_names();
        is_key_.resize(fields().size() + 1);
        for (const std::size_t field : connector_.key_fields()) {
            is_key_[field] = true;
        }
        const bool all_there = !is_key_.back();
        if (!all_there || keys_.size() != connector_.key_count()) fail("not all keys can be read");
    }

    // Says what is in the file, after a pass over its records.
    void describe() {
        scl::Scl_status status;
        static_cast<void>(connector_.largest_token_count(0, status));
        check(status);
        std::cout << shown(name_) << ": " << counted(connector_.record_count(), "record") << " of "
                  << counted(fields().size(), "field") << "; the file checks out\n";
        for (std::size_t i = 0; i < fields().size(); ++i) {
            const tla::Field_descriptor& field = fields()[i];
            const std::string_view type = tla::tla_formatter_name_from_type_id(field.type);
            std::cout << "  " << shown(field.name) << ", "
                      << (type.empty() ? "of unknown type" : type) << (is_key_[i] ? ", key" : "")
                      << '\n';
        }
    }

    // Prints a line for the value; false when no record has it.
    bool print(std::string_view key_name, std::string_view value) {
        const std::u16string key = wide(key_name);
        const auto place = std::ranges::find(keys_, key);
        if (place == keys_.end()) fail("no such key: " + shown(key));
        const auto field = std::ranges::find(fields(), key, &tla::Field_descriptor::name);
        const std::u16string text = wide(value);
        const auto values = token_values(text, field->type);
        std::vector<std::int64_t> offsets;
        scl::Scl_status status;
        if (!values.empty()) {
            const auto number = static_cast<std::size_t>(place - keys_.begin());
            connector_.find_records(values, number, offsets, status);
        }
        check(status);
        print_line(shown(key) + " \"" + shown(scl::scl_trimmed(text)) + '"', offsets);
        return !offsets.empty();
    }

private:
    [[nodiscard]] const std::vector<tla::Field_descriptor>& fields() const {
        return connector_.field_descriptors();
    }

    static void print_line(const std::string& what, const std::vector<std::int64_t>& offsets) {
        std::cout << what << ": " << counted(offsets.size(), "record");
        for (std::size_t i = 0; i < offsets.size(); ++i) {
            std::cout << (i == 0 ? " (" : " ") << offsets[i];
        }
        std::cout << (offsets.empty() ? "\n" : ")\n");
    }

    [[noreturn]] void fail(const std::string& what) const {
        throw std::runtime_error(shown(name_) + ": " + what);
    }

    void check(const scl::Scl_status& status) const {
        if (status.ok()) return;
        std::u16string text;
        scl::Scl_status_lookup::to_string(status, text);
        std::string message;
        scl::scl_wtos(text, message, true);
        fail(message);
    }

    std::u16string name_;
    tla::Tla_data_set_connector_file connector_;
    std::vector<std::u16string> keys_;
    std::vector<bool> is_key_; // each field; the last, whether a key is no field
};

// Each line is a value. A byte order mark may stand before the first.
Exit_status look_up_lines(Data_set& data_set, std::string_view key) {
    constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
    bool all_found = true;
    std::string line;
    for (bool is_first = true; std::getline(std::cin, line); is_first = false) {
        std::string_view value = line;
        if (is_first && value.starts_with(BYTE_ORDER_MARK)) {
            value.remove_prefix(BYTE_ORDER_MARK.size());
        }
        all_found = data_set.print(key, value) && all_found;
    }
    return all_found ? ALL_FOUND : NOT_FOUND;
}

Exit_status run(int argument_count, char** arguments) {
    if (argument_count < 2 || argument_count > 4) {
        throw std::runtime_error("usage: lookup FILE [KEY [VALUE]]");
    }
    Data_set data_set(arguments[1]);
    Exit_status status = ALL_FOUND;
    if (argument_count == 2) {
        data_set.describe();
    } else if (argument_count == 3) {
        status = look_up_lines(data_set, arguments[2]);
    } else if (!data_set.print(arguments[2], arguments[3])) {
        status = NOT_FOUND;
    }
    if (!std::cout.flush()) throw std::runtime_error("standard output: cannot be written");
    return status;
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
