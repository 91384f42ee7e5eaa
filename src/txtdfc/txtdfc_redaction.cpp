#include "txtdfc/txtdfc_redaction.hpp"

#include "scl/scl_unicode.hpp"
#include "scl/scl_utf.hpp"

namespace txtdfc {

namespace {

// Goes over a text character by character.
class Walk {
public:
    explicit Walk(std::u16string_view text) : text_(text) {}

    [[nodiscard]] std::size_t at() const { return at_; }

    // Over `count` visible characters and one that attaches to the last. Returns how many visible
    // ones there were: fewer at the end of the text.
    std::size_t pass(std::size_t count) {
        std::size_t passed = 0;
        while (passed < count && at_ < text_.size()) {
            if (!take_attached()) {
                (void)scl::impl::scl_utf16_next(text_, at_);
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
        const char32_t character = scl::impl::scl_utf16_next(text_, after);
        if (scl::scl_code_point_type(character) != scl::Scl_unicode_code_point_type::attached) {
            return false;
        }
        at_ = after;
        return true;
    }

    std::u16string_view text_;
    std::size_t at_ = 0;
};

} // namespace

Txtdfc_redaction txtdfc_find_redaction(std::u16string_view text, std::size_t skip,
                                       std::size_t count) {
    Walk walk(text);
    if (skip != 0) walk.pass(skip);
    const std::size_t begin = walk.at();
    const std::size_t passed = walk.pass(count);
    return {begin, walk.at(), passed};
}

} // namespace txtdfc
