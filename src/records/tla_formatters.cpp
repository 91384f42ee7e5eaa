#include "records/tla_formatters.hpp"

#include "scl/status/scl_status.hpp"
#include "scl/text/scl_case.hpp"
#include "scl/text/scl_normalize.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace tla {

namespace {

using Ascii = scl::Scl_text_span<char>;
using Formatter_pointer = std::unique_ptr<const Tla_formatter_base>;

// Copies all but hyphens and blanks and gives the end of the copy, which may lie over the text.
// Every unit is written and only some are kept: which ones come is not worth a guess.
template <typename Unit>
Unit* copy_without_separators(const Unit* from, const Unit* end, Unit* to) {
    for (; from != end; ++from) {
        const Unit unit = *from;
        *to = unit;
        to += static_cast<int>(unit != '-') & static_cast<int>(unit != ' ');
    }
    return to;
}

// Block by block; what lies behind the text may be one by chance and costs a copy then.
bool has_separator(Ascii text) {
    using Block [[gnu::vector_size(scl::SCL_BLOCK_BYTES)]] = std::int8_t;
    using Halves [[gnu::vector_size(scl::SCL_BLOCK_BYTES)]] = std::uint64_t;
    Block found{};
    for (const char* at = text.begin; at < text.end; at += scl::SCL_BLOCK_BYTES) {
        Block bytes;
        std::memcpy(&bytes, at, sizeof bytes);
        found |= (bytes == '-') | (bytes == ' ');
    }
    const auto halves = std::bit_cast<Halves>(found);
    return (halves[0] | halves[1]) != 0;
}

struct Formatter_type {
    std::string_view name;
    Formatter_type_id id;
    Formatter_pointer (*create)();
    Tla_ascii_formatter format_ascii;
};

template <typename Formatter>
constexpr Formatter_type make_type() {
    return {Formatter::NAME, Formatter::TYPE_ID,
            []() -> Formatter_pointer { return std::make_unique<Formatter>(); },
            Formatter::format_ascii};
}

constexpr std::array TYPES = {make_type<Tla_simple_formatter>(),
                              make_type<Tla_simplenc_formatter>(),
                              make_type<Tla_ccnum_formatter>()};

const Formatter_type* find_type(const Formatter_type_id& id) {
    const auto* const found = std::ranges::find(TYPES, id, &Formatter_type::id);
    return found == TYPES.end() ? nullptr : found;
}

} // namespace

// A failed normalisation is nobody's fault and not reported: the value is then used as it came.
void Tla_formatter_base::copy_normalised(std::u16string_view input, std::u16string& output,
                                         bool raw) {
    if (!raw && !scl::scl_is_plain(input) && scl::scl_can_normalize(input)) {
        scl::Scl_status status;
        scl::scl_normalize(input, output, status);
        if (!status.has_failed()) return;
    }
    if (output.data() == input.data()) {
        output.resize(input.size());
    } else {
        output = input;
    }
}

void Tla_simple_formatter::format(std::u16string_view input, std::u16string& output,
                                  bool raw) const {
    copy_normalised(input, output, raw);
}

Ascii Tla_simple_formatter::format_ascii(Ascii value, Scratch_text<char>& /*scratch*/) {
    return value;
}

void Tla_simplenc_formatter::format(std::u16string_view input, std::u16string& output,
                                    bool raw) const {
    copy_normalised(input, output, raw);
    scl::scl_lower(output);
}

Ascii Tla_simplenc_formatter::format_ascii(Ascii value, Scratch_text<char>& scratch) {
    scl::scl_lower_ascii(value, scratch.room(value.size()));
    return scratch.text(value.size());
}

void Tla_ccnum_formatter::format(std::u16string_view input, std::u16string& output,
                                 bool raw) const {
    copy_normalised(input, output, raw);
    char16_t* const begin = output.data();
    const char16_t* const end = copy_without_separators(begin, begin + output.size(), begin);
    output.resize(static_cast<std::size_t>(end - begin));
}

// Most numbers come without separators: a look at all of one is cheaper than a copy.
Ascii Tla_ccnum_formatter::format_ascii(Ascii value, Scratch_text<char>& scratch) {
    if (!has_separator(value)) return value;
    char* const begin = scratch.room(value.size());
    const char* const end = copy_without_separators(value.begin, value.end, begin);
    return scratch.text(static_cast<std::size_t>(end - begin));
}

Formatter_type_id tla_formatter_type_id_from_name(std::string_view name) {
    for (const Formatter_type& type : TYPES) {
        if (name.size() == type.name.size() && scl::scl_utf8_compare_nc(name, type.name) == 0) {
            return type.id;
        }
    }
    return {};
}

std::string_view tla_formatter_name_from_type_id(const Formatter_type_id& id) {
    const Formatter_type* const type = find_type(id);
    return type != nullptr ? type->name : std::string_view();
}

Formatter_pointer tla_create_formatter(const Formatter_type_id& id) {
    const Formatter_type* const type = find_type(id);
    return type != nullptr ? type->create() : nullptr;
}

Tla_ascii_formatter tla_ascii_formatter(const Formatter_type_id& id) {
    const Formatter_type* const type = find_type(id);
    return type != nullptr ? type->format_ascii : nullptr;
}

} // namespace tla
