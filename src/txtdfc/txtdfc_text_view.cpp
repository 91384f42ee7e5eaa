#include "txtdfc/txtdfc_text_view.hpp"

#include "scl/text/scl_unicode.hpp"
#include "scl/text/scl_utf.hpp"
#include "txtdfc/txtdfc_format_codec.hpp"

namespace txtdfc {

namespace {

// Walks over a text as redaction counts it: by visible characters, each with at most one attached
// character, which is enough for an accented letter. Further attached characters are passed
// together with the next visible one.
class Walk {
public:
    explicit Walk(std::u16string_view text) : text_(text) {}

    [[nodiscard]] std::size_t at() const { return at_; }

    // Passes `count` visible characters, and one that attaches to the last. Returns how many
    // visible ones it passed: fewer if the text ends before.
    std::size_t pass(std::size_t count) {
        std::size_t passed = 0;
        while (passed < count && at_ < text_.size()) {
            if (!take_attached()) {
                (void)scl::scl_utf16_next(text_, at_);
                ++passed;
            }
        }
        (void)take_attached();
        return passed;
    }

private:
    bool take_attached() {
        if (at_ == text_.size()) return false;
        std::size_t after = at_;
        const char32_t character = scl::scl_utf16_next(text_, after);
        if (scl::scl_code_point_type(character) != scl::Scl_unicode_code_point_type::attached) {
            return false;
        }
        at_ = after;
        return true;
    }

    std::u16string_view text_;
    std::size_t at_ = 0;
};

// Contents are UTF-16, and edits count in bytes.
constexpr std::uint64_t UNIT_BYTES = sizeof(char16_t);

// What of a text is overwritten, in 16-bit units from `begin` up to `end`, and the number of
// visible characters in it: as many redaction characters take its place.
struct Redaction {
    std::size_t begin;
    std::size_t end;
    std::size_t count;

    [[nodiscard]] bool empty() const { return begin == end; }
};

// The `count` visible characters (code points) after the first `skip`, or as many as there are;
// empty if none are left. With nothing skipped it starts at offset 0, so that attached characters
// at the very front are included.
Redaction find_redaction(std::u16string_view text, std::size_t skip, std::size_t count) {
    Walk walk(text);
    if (skip != 0) walk.pass(skip);
    const std::size_t begin = walk.at();
    const std::size_t passed = walk.pass(count);
    return {begin, walk.at(), passed};
}

} // namespace

Txtdfc_text_view::~Txtdfc_text_view() = default;

// Only views of this kind have tokens of this kind.
Txtdfc_format_codec& Txtdfc_physical_token::codec() const {
    return static_cast<const Txtdfc_text_view&>(view()).codec();
}

// From the text, since content_length() has 16 bits only.
std::uint64_t Txtdfc_physical_token::text_bytes() const {
    return text_entry().size() * UNIT_BYTES;
}

bool Txtdfc_physical_token::remove() {
    return codec().modifiable() && codec().patcher().add_delete(offset_, text_bytes());
}

// One edit over everything between the two, so that it is queued whole or not at all.
bool Txtdfc_physical_token::replace_run(const Txt_physical_token& back, std::u16string_view text) {
    const std::uint64_t end = static_cast<const Txtdfc_physical_token&>(back).content_end();
    return codec().modifiable() && codec().patcher().add_edit(offset_, end - offset_, text);
}

bool Txtdfc_physical_token::replace_text(std::u16string_view text, std::u16string_view before,
                                         std::u16string_view after) {
    if (!codec().modifiable() || (text.empty() && before.empty() && after.empty())) return false;
    ucl::Ucl_buffer_patcher& patcher = codec().patcher();
    // Queued in the order of the text, since edits at one offset keep their order.
    return (before.empty() || patcher.add_insert(offset_, before)) &&
           (text.empty() || patcher.add_edit(offset_, text_bytes(), text)) &&
           (after.empty() || patcher.add_insert(content_end(), after));
}

bool Txtdfc_physical_token::redact(std::size_t skip, std::size_t count) {
    if (!codec().modifiable()) return false;
    const std::size_t wanted = count != 0 ? count : length(txt::Txt_text_form::visible);
    const Redaction found = find_redaction(text_entry(), skip, wanted);
    // Nothing to overwrite is no failure.
    if (found.empty()) return true;
    return codec().patcher().add_edit(offset_ + found.begin * UNIT_BYTES,
                                      (found.end - found.begin) * UNIT_BYTES,
                                      view().redaction(found.count));
}

} // namespace txtdfc
