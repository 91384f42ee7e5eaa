#pragma once

#include "records/values/field_descriptor.hpp"
#include "records/values/tla_padded_buffer.hpp"

#include <memory>
#include <string>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace tla {

// Brings a field's value into the form that its tokens are made from, so that values that should
// match become equal. Holds no state: one object serves any number of values.
class Tla_formatter_base {
public:
    Tla_formatter_base() = default;
    Tla_formatter_base(const Tla_formatter_base&) = delete;
    Tla_formatter_base& operator=(const Tla_formatter_base&) = delete;
    virtual ~Tla_formatter_base() = default;

    // The formatter type's name, a constant of the program.
    [[nodiscard]] virtual std::string_view name() const = 0;
    [[nodiscard]] virtual Formatter_type_id type_id() const = 0;

    // Replaces `output`, of which `input` may view a part. `raw` leaves out the normalisation to
    // NFC; a value that is not well-formed UTF-16 is never normalised. Throws nothing but
    // std::bad_alloc.
    virtual void format(std::u16string_view input, std::u16string& output, bool raw) const = 0;

protected:
    // True when the copy is known to be in NFC.
    [[nodiscard]] static bool copy_normalised(std::u16string_view input, std::u16string& output,
                                              bool raw);
};

using Tla_wide_formatter = void (*)(std::u16string_view input, std::u16string& output, bool raw);

// The same for ASCII bytes, which are always in NFC. The result is the value itself, where nothing
// changes, or in `buffer`. Tested by Formatter.FormatsBytesAsItFormatsUnits.
using Tla_ascii_formatter = scl::Scl_text_span<char> (*)(scl::Scl_text_span<char> value,
                                                         Tla_padded_buffer<char>& buffer);

// Simple: the value in NFC, with its letter case and all its characters.
class Tla_simple_formatter final : public Tla_formatter_base {
public:
    static constexpr std::string_view NAME = "Simple";
    static constexpr Formatter_type_id TYPE_ID{0x407a3fd46ed199e8, 0xa63ffdf7b9325888};

    [[nodiscard]] std::string_view name() const override { return NAME; }
    [[nodiscard]] Formatter_type_id type_id() const override { return TYPE_ID; }
    void format(std::u16string_view input, std::u16string& output, bool raw) const override;

    [[nodiscard]] static scl::Scl_text_span<char> format_ascii(scl::Scl_text_span<char> value,
                                                               Tla_padded_buffer<char>& buffer);
};

// SimpleNC: the value in NFC, lower-cased, so that letter case makes no difference.
class Tla_simplenc_formatter final : public Tla_formatter_base {
public:
    static constexpr std::string_view NAME = "SimpleNC";
    static constexpr Formatter_type_id TYPE_ID{0x42885afa1505ba28, 0x7f26ef287a21d68b};

    [[nodiscard]] std::string_view name() const override { return NAME; }
    [[nodiscard]] Formatter_type_id type_id() const override { return TYPE_ID; }
    void format(std::u16string_view input, std::u16string& output, bool raw) const override;

    // In the header, since it is done with most values of this type.
    [[nodiscard]] static scl::Scl_text_span<char> format_ascii(scl::Scl_text_span<char> value,
                                                               Tla_padded_buffer<char>& buffer) {
        scl::scl_lower_ascii(value, buffer.room(value.size()));
        return buffer.text(value.size());
    }
};

// CCNUMBER: the value in NFC without hyphens (U+002D) and blanks (U+0020). Nothing else is removed
// or checked: any text of any length passes.
class Tla_ccnum_formatter final : public Tla_formatter_base {
public:
    static constexpr std::string_view NAME = "CCNUMBER";
    static constexpr Formatter_type_id TYPE_ID{0x410d0a7f84f1b08f, 0x5fcac1114426cdaa};

    [[nodiscard]] std::string_view name() const override { return NAME; }
    [[nodiscard]] Formatter_type_id type_id() const override { return TYPE_ID; }
    void format(std::u16string_view input, std::u16string& output, bool raw) const override;

    [[nodiscard]] static scl::Scl_text_span<char> format_ascii(scl::Scl_text_span<char> value,
                                                               Tla_padded_buffer<char>& buffer);
};

// The three formatter types by name and identifier.

// Letter case makes no difference; all zero for a name that is none of the three.
[[nodiscard]] Formatter_type_id tla_formatter_type_id_from_name(std::string_view name);

// Empty for an identifier that is none of the three.
[[nodiscard]] std::string_view tla_formatter_name_from_type_id(const Formatter_type_id& id);

// Null for an identifier that is none of the three. The second does what the formatter's `format`
// does, without an object.
[[nodiscard]] std::unique_ptr<const Tla_formatter_base>
tla_create_formatter(const Formatter_type_id& id);
[[nodiscard]] Tla_wide_formatter tla_wide_formatter(const Formatter_type_id& id);
[[nodiscard]] Tla_ascii_formatter tla_ascii_formatter(const Formatter_type_id& id);

} // namespace tla

#pragma GCC visibility pop
