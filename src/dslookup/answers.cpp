#include "answers.hpp"

#include "records/values/tla_formatters.hpp"
#include "scl/text/scl_string.hpp"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace dslookup {

namespace {

// In UTF-8. Editors of some systems put it in front of a list.
constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

// Control characters and stray bytes as \xNN: a terminal would act on them.
std::string shown(std::u16string_view text) {
    std::string narrow;
    scl::scl_wtos(scl::scl_shown(text), narrow, true);
    return narrow;
}

[[noreturn]] void fail_of(const char* stream) {
    throw std::runtime_error(std::string(stream) + ": " + std::strerror(errno));
}

// Every write is checked: a list that ends early must not look complete.
void print(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        fail_of("standard output");
    }
}

// "1 record", "2 records".
std::string counted(std::uint64_t count, std::string_view noun) {
    return std::to_string(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

std::string listed(const std::vector<std::int64_t>& offsets) {
    std::string list;
    for (const std::int64_t offset : offsets) {
        list += list.empty() ? " (" : " ";
        list += std::to_string(offset);
    }
    return list.empty() ? list : list + ')';
}

// The lines of standard input. The C library's reading tells the end of a file from a fault, which
// the streams of C++ do not.
class Lines {
public:
    // Valid until the next call.
    bool next(std::string_view& line) {
        char* bytes = bytes_.release();
        errno = 0;
        const ssize_t size = ::getline(&bytes, &room_, stdin);
        bytes_.reset(bytes);
        if (size < 0) {
            if (errno != 0 || std::ferror(stdin) != 0) fail_of("standard input");
            return false;
        }
        line = {bytes, static_cast<std::size_t>(size)};
        if (line.ends_with('\n')) line.remove_suffix(1);
        return true;
    }

private:
    struct Free {
        void operator()(char* bytes) const { std::free(bytes); } // NOLINT: getline took it so
    };

    std::unique_ptr<char, Free> bytes_;
    std::size_t room_ = 0;
};

// Trimmed here and not in find(): the answer shows what was looked up.
bool print_answer(Data_set& data_set, std::string_view key_name, std::size_t key,
                  std::string_view value) {
    std::u16string text;
    scl::scl_stow(value, text);
    const std::u16string_view trimmed = scl::scl_trimmed(text);
    const std::vector<std::int64_t>& offsets = data_set.find(trimmed, key);
    print(scl::scl_shown(key_name) + " \"" + shown(trimmed) +
          "\": " + counted(offsets.size(), "record") + listed(offsets) + '\n');
    return !offsets.empty();
}

} // namespace

void print_contents(Data_set& data_set) {
    // First: counts and types mean nothing in a file whose records cannot be told apart.
    data_set.check_records();
    print(data_set.name() + ": " + counted(data_set.record_count(), "record") + " of " +
          counted(data_set.fields().size(), "field") + "; the file checks out\n");
    for (std::size_t i = 0; i < data_set.fields().size(); ++i) {
        const tla::Field_descriptor& field = data_set.fields()[i];
        const std::string_view type = tla::tla_formatter_name_from_type_id(field.type);
        print("  " + shown(field.name) + ", " +
              std::string(type.empty() ? "of unknown type" : type) +
              (data_set.is_key(i) ? ", key\n" : "\n"));
    }
}

bool print_answer(Data_set& data_set, std::string_view key, std::string_view value) {
    return print_answer(data_set, key, data_set.key(key), value);
}

bool print_answers_to_lines(Data_set& data_set, std::string_view key) {
    const std::size_t index = data_set.key(key);
    bool all_found = true;
    bool is_first = true;
    Lines lines;
    for (std::string_view value; lines.next(value); is_first = false) {
        // Only here: further back it is a character like any other.
        if (is_first && value.starts_with(BYTE_ORDER_MARK)) {
            value.remove_prefix(BYTE_ORDER_MARK.size());
        }
        all_found = print_answer(data_set, key, index, value) && all_found;
    }
    return all_found;
}

void finish_output() {
    // What is still in the C library's buffer may fail at the very end, on a full disk.
    if (std::fflush(stdout) != 0) fail_of("standard output");
}

} // namespace dslookup
