#include "records/values/tla_formatters.hpp"

#include "scl/status/scl_status.hpp"
#include "scl/text/scl_block.hpp"
#include "scl/text/scl_case.hpp"
#include "scl/text/scl_normalize.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace tla {

namespace {

using Ascii = scl::Scl_text_span<char>;
using Formatter_pointer = std::unique_ptr<const Tla_formatter_base>;

template <typename Unit>
bool is_separator(Unit unit) {
    return unit == '-' || unit == ' ';
}

// The separators among the bytes of a block, a bit for each.
std::uint32_t find_separators(const char* from) {
    const scl::Scl_block block(from);
    return (block.equals('-') | block.equals(' ')).top_bits();
}

// Copies a stretch in whole blocks; what comes behind it is written over next.
char* copy_stretch(const char* from, const char* end, char* to) {
    for (const char* at = from; at < end; at += scl::SCL_BLOCK_BYTES) {
        scl::Scl_block(at).store(to + (at - from));
    }
    return to + (end - from);
}

// Copies what lies between separators and gives the end of the copy; null when there are none and
// nothing was copied.
char* copy_without_separators(Ascii text, char* to) {
    const char* stretch = text.begin;
    for (const char* at = text.begin; at < text.end; at += scl::SCL_BLOCK_BYTES) {
        for (std::uint32_t found = find_separators(at); found != 0; found &= found - 1) {
            const char* const separator = at + std::countr_zero(found);
            if (separator >= text.end) break;
            to = copy_stretch(stretch, separator, to);
            stretch = separator + 1;
        }
    }
    return stretch == text.begin ? nullptr : copy_stretch(stretch, text.end, to);
}

struct Formatter_type {
    std::string_view name;
    Formatter_type_id id;
    Formatter_pointer (*create)();
    Tla_wide_formatter format_wide;
    Tla_ascii_formatter format_ascii;
};

template <typename Formatter>
constexpr Formatter_type make_type() {
    return {Formatter::NAME, Formatter::TYPE_ID,
            []() -> Formatter_pointer { return std::make_unique<Formatter>(); },
            [](std::u16string_view input, std::u16string& output, bool raw) {
                Formatter().format(input, output, raw);
            },
            Formatter::format_ascii};
}

constexpr std::array TYPES = {make_type<Tla_simple_formatter>(),
                              make_type<Tla_simplenc_formatter>(),
                              make_type<Tla_ccnum_formatter>()};

// Three types: a search from the front beats any table.
const Formatter_type* find_type(const Formatter_type_id& id) {
    const auto* const found = std::ranges::find(TYPES, id, &Formatter_type::id);
    return found == TYPES.end() ? nullptr : found;
}

} // namespace

// A normalisation that fails is not reported: the value is then used as it came.
bool Tla_formatter_base::copy_normalised(std::u16string_view input, std::u16string& output,
                                         bool raw) {
    const bool is_plain = scl::scl_is_plain(input);
    if (!raw && !is_plain && scl::scl_can_normalize(input)) {
        scl::Scl_status status;
        scl::scl_normalize(input, output, status);
        if (!status.has_failed()) return true;
    }
    // The caller formats in its own memory: nothing to copy, only an end to cut.
    if (output.data() == input.data()) {
        output.resize(input.size());
    } else {
        output = input;
    }
    return is_plain;
}

void Tla_simple_formatter::format(std::u16string_view input, std::u16string& output,
                                  bool raw) const {
    (void)copy_normalised(input, output, raw);
}

Ascii Tla_simple_formatter::format_ascii(Ascii value, Tla_padded_buffer<char>& /*buffer*/) {
    return value;
}

void Tla_simplenc_formatter::format(std::u16string_view input, std::u16string& output,
                                    bool raw) const {
    if (copy_normalised(input, output, raw)) {
        scl::scl_lower_normalized(output);
    } else {
        scl::scl_lower(output);
    }
}

void Tla_ccnum_formatter::format(std::u16string_view input, std::u16string& output,
                                 bool raw) const {
    (void)copy_normalised(input, output, raw);
    std::erase_if(output, is_separator<char16_t>);
}

// Most numbers have no separators and are used where they lie.
Ascii Tla_ccnum_formatter::format_ascii(Ascii value, Tla_padded_buffer<char>& buffer) {
    char* const begin = buffer.room(value.size());
    const char* const end = copy_without_separators(value, begin);
    return end == nullptr ? value : Ascii{begin, end};
}

// Sizes first, since a name of a type has no letters that change their size with their case.
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

Tla_wide_formatter tla_wide_formatter(const Formatter_type_id& id) {
    const Formatter_type* const type = find_type(id);
    return type != nullptr ? type->format_wide : nullptr;
}

Tla_ascii_formatter tla_ascii_formatter(const Formatter_type_id& id) {
    const Formatter_type* const type = find_type(id);
    return type != nullptr ? type->format_ascii : nullptr;
}

} // namespace tla
