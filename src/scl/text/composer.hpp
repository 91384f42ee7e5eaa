#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace scl::impl {

// Brings a segment of text to Normalization Form C: decomposes it, orders its combining marks,
// composes it again (Unicode Standard, section 3.11; Hangul by section 3.12). A segment must not
// interact with what is before and after it. The working memory is kept from one segment to the
// next.
class Composer {
public:
    // Appends the segment in Normalization Form C.
    void compose(std::u16string_view segment, std::u16string& out);

private:
    // The class is looked up once: ordering and composing both go by it.
    struct Character {
        char32_t code_point;
        std::uint8_t combining_class;
    };

    void decompose(char32_t code_point);
    void add(char32_t code_point);
    void order_marks();
    void recompose();

    std::vector<Character> characters_;
};

} // namespace scl::impl
