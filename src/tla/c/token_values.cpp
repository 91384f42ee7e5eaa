#include "records/values/tla_formatters.hpp"
#include "records/values/tla_value_tokens.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/c/report.hpp"

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <vector>

using tla::c::view_of;

// By the same steps as a build: marks off, columns apart, white space off, then by the type.
// Tested beside a built file by Dsmake_h.TokenValuesOfLinesAreThoseOfRecords.
struct dsmake_tokeniser {
    std::vector<tla::Formatter_type_id> types;
    tla::Tla_value_tokeniser tokeniser;
    std::string line; // without byte order marks
    std::u16string text;
    std::vector<std::uint64_t> values;  // of one field
    std::vector<std::uint64_t> numbers; // of the line
};

namespace {

constexpr char SEPARATOR = '\t';
constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

// Nothing is left of an empty field, which is one without values.
void tokenise(dsmake_tokeniser& tokeniser, std::string_view value,
              const tla::Formatter_type_id& type) {
    scl::scl_stow(value, tokeniser.text);
    scl::Scl_status nothing_left; // which is no fault here
    tokeniser.tokeniser.tokenise(scl::scl_trimmed(tokeniser.text), type, tokeniser.values,
                                 nothing_left);
}

// A build drops marks wherever they stand, and reads on behind each: what looks like one after
// another was dropped from its middle stays.
std::string_view without_marks(std::string_view line, std::string& room) {
    if (line.find(BYTE_ORDER_MARK) == std::string_view::npos) return line;
    room.clear();
    for (std::size_t mark = 0; mark != std::string_view::npos;) {
        mark = line.find(BYTE_ORDER_MARK);
        room += line.substr(0, mark);
        if (mark != std::string_view::npos) line.remove_prefix(mark + BYTE_ORDER_MARK.size());
    }
    return room;
}

// False when the line has another number of fields.
bool tokenise_line(dsmake_tokeniser& tokeniser, std::string_view line) {
    line = without_marks(line, tokeniser.line);
    const auto fields = static_cast<std::size_t>(std::ranges::count(line, SEPARATOR)) + 1;
    // Counted before anything is worked out: a build refuses such a line as well.
    if (fields != tokeniser.types.size()) return false;
    tokeniser.numbers.clear();
    for (const tla::Formatter_type_id& type : tokeniser.types) {
        const std::string_view field = line.substr(0, line.find(SEPARATOR));
        line.remove_prefix(std::min(line.size(), field.size() + 1));
        tokenise(tokeniser, field, type);
        tokeniser.numbers.push_back(tokeniser.values.size());
        tokeniser.numbers.insert(tokeniser.numbers.end(), tokeniser.values.begin(),
                                 tokeniser.values.end());
    }
    return true;
}

// The type of a name; false for one that is none of the three.
bool find_type(const char* name, tla::Formatter_type_id& type) {
    type = tla::tla_formatter_type_id_from_name(view_of(name));
    return !tla::tla_formatter_name_from_type_id(type).empty();
}

} // namespace

// How many there are is told also where the room is too small, so that the caller can ask again.
int64_t dsmake_token_values(const char* type, const char* text, size_t size, uint64_t* values,
                            size_t room) {
    try {
        dsmake_tokeniser tokeniser;
        tla::Formatter_type_id id;
        if (!find_type(type, id)) return -1;
        tokenise(tokeniser, view_of(text, size), id);
        const std::size_t put = values != nullptr ? std::min(room, tokeniser.values.size()) : 0;
        std::copy_n(tokeniser.values.begin(), put, values);
        return static_cast<int64_t>(tokeniser.values.size());
    } catch (...) {
        return -1;
    }
}

dsmake_tokeniser* dsmake_tokeniser_open(const char* const* types, size_t count) {
    if (types == nullptr && count != 0) return nullptr;
    try {
        auto tokeniser = std::make_unique<dsmake_tokeniser>();
        for (const char* const type : std::span(types, count)) {
            if (!find_type(type, tokeniser->types.emplace_back())) return nullptr;
        }
        return tokeniser.release();
    } catch (...) {
        return nullptr;
    }
}

void dsmake_tokeniser_close(dsmake_tokeniser* tokeniser) {
    delete tokeniser; // NOLINT(cppcoreguidelines-owning-memory): the caller in C owned it
}

int64_t dsmake_line_values(dsmake_tokeniser* tokeniser, const char* line, size_t size,
                           const uint64_t** numbers) {
    if (tokeniser == nullptr) return -1;
    try {
        if (!tokenise_line(*tokeniser, view_of(line, size))) return -1;
        if (numbers != nullptr) *numbers = tokeniser->numbers.data();
        return static_cast<int64_t>(tokeniser->numbers.size());
    } catch (...) {
        return -1;
    }
}
