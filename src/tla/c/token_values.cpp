#include "tla/c/dsmake.h"

#include "records/tla_formatters.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/read/key_value.hpp"

#include <algorithm>
#include <exception>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Types = std::vector<tla::Formatter_type_id>;

// Makes token values as a build does, and puts them where the caller wants them.
class Value_writer {
public:
    explicit Value_writer(std::span<std::uint64_t> room) : room_(room) {}

    // How many values the text has, whether or not there was room for them.
    std::size_t add(std::string_view text, const tla::Formatter_type_id& type) {
        scl::scl_stow(text, wide_);
        const std::u16string_view value = scl::scl_trimmed(wide_);
        if (value.empty()) return 0;
        scl::Scl_status status; // says only that nothing is left, which is no fault here
        tokeniser_.tokenise(value, type, values_, status);
        if (total_ < room_.size()) {
            const std::size_t kept = std::min(values_.size(), room_.size() - total_);
            std::copy_n(values_.begin(), kept, room_.begin() + static_cast<std::ptrdiff_t>(total_));
        }
        total_ += values_.size();
        return values_.size();
    }

    [[nodiscard]] int64_t total() const { return static_cast<int64_t>(total_); }

private:
    std::span<std::uint64_t> room_;
    std::size_t total_ = 0;
    tla::Key_tokeniser tokeniser_;
    std::u16string wide_;
    std::vector<std::uint64_t> values_;
};

// What stands before the first of these, which is taken away with it; false when there is none.
bool cut(std::string_view& text, char end, std::string_view& piece) {
    const std::size_t place = text.find(end);
    if (place == std::string_view::npos) return false;
    piece = text.substr(0, place);
    text.remove_prefix(place + 1);
    return true;
}

// False when the text has other than `counts.size()` fields, or a type that nobody knows.
bool add_records(std::string_view text, const Types& types, std::span<std::uint32_t> counts,
                 Value_writer& writer) {
    std::size_t done = 0;
    for (std::string_view line; cut(text, '\n', line);) {
        for (const tla::Formatter_type_id& type : types) {
            std::string_view field = line;
            const bool is_last = &type == &types.back();
            if (done == counts.size() || cut(line, '\t', field) == is_last) return false;
            counts[done++] = static_cast<std::uint32_t>(writer.add(field, type));
        }
    }
    return text.empty() && done == counts.size();
}

bool find_types(std::span<const char* const> names, Types& types) {
    for (const char* const name : names) {
        if (name == nullptr) return false;
        types.push_back(tla::tla_formatter_type_id_from_name(name));
        if (types.back() == tla::Formatter_type_id{}) return false;
    }
    return !types.empty();
}

} // namespace

int64_t dsmake_token_values(const char* type, const char* text, size_t size, uint64_t* values,
                            size_t room) {
    try {
        Types types;
        if (text == nullptr || !find_types({&type, 1}, types)) return -1;
        Value_writer writer({values, values != nullptr ? room : 0});
        writer.add({text, size}, types.front());
        return writer.total();
    } catch (const std::exception&) {
        return -1;
    }
}

int64_t dsmake_record_values(const char* const* types, size_t fields, const char* text, size_t size,
                             uint64_t* values, size_t room, uint32_t* counts, size_t count_room) {
    try {
        Types known;
        if (types == nullptr || text == nullptr || !find_types({types, fields}, known)) return -1;
        Value_writer writer({values, values != nullptr ? room : 0});
        const std::span<std::uint32_t> places(counts, counts != nullptr ? count_room : 0);
        return add_records({text, size}, known, places, writer) ? writer.total() : -1;
    } catch (const std::exception&) {
        return -1;
    }
}
