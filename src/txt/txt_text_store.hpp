#pragma once

#include "scl/text/scl_utf.hpp"

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <unordered_set>
#include <vector>

#pragma GCC visibility push(default) // installed

namespace txt {

// Keeps texts at addresses that do not change, each with a zero unit behind it:
//
//     | S m i t h 0 | J o h n 0 | M a r |  unused  |
//       kept          kept        open    open_ .. at_ .. limit_
//
// The newest text is open: it grows at its end, and can be cut back, until keep() closes it. Texts
// live as long as the store. The first FIRST_UNITS units need no allocation; growing beyond them
// can throw std::bad_alloc.
class Txt_text_store {
public:
    static constexpr std::size_t FIRST_UNITS = 256;

    Txt_text_store() : open_(first_), at_(open_), limit_(open_ + FIRST_UNITS - 1) {}
    Txt_text_store(const Txt_text_store&) = delete;
    Txt_text_store& operator=(const Txt_text_store&) = delete;
    ~Txt_text_store() = default;

    // The open text. Moves when it grows.
    [[nodiscard]] std::u16string_view open_text() const { return {open_, at_}; }
    [[nodiscard]] std::size_t open_length() const { return static_cast<std::size_t>(at_ - open_); }
    [[nodiscard]] bool is_open_text(std::u16string_view text) const { return text.data() == open_; }

    // Empties the open text, or cuts it back to `length` units.
    void clear() { at_ = open_; }
    void cut(std::size_t length) { at_ = open_ + length; }

    void append(char32_t code_point) {
        if (limit_ - at_ < 2) grow(2);
        at_ = scl::scl_utf16_put(at_, code_point);
    }
    void append(std::u16string_view text);

    // The memory behind the open text, to write to in place. Call grown() with the units written.
    [[nodiscard]] std::span<char16_t> room() { return {at_, limit_}; }
    void grown(std::size_t units) { at_ += units; }

    // Closes the open text, which never moves from then on, and opens the next one behind its zero.
    // When the zero takes the memory's last unit, the next append() gets new memory first.
    [[nodiscard]] std::u16string_view keep() {
        const std::u16string_view text = open_text();
        *at_ = u'\0';
        if (at_ != limit_) ++at_;
        open_ = at_;
        return text;
    }

private:
    struct Further {
        std::vector<std::unique_ptr<char16_t[]>> pieces;
        std::size_t newest_units = FIRST_UNITS;
    };

    void grow(std::size_t units);

    char16_t first_[FIRST_UNITS]; // not read before it is written: most views need little of it
    char16_t* open_;
    char16_t* at_;
    char16_t* limit_; // one unit before the end of the memory, for the closing zero
    std::unique_ptr<Further> further_; // once the first memory is used up
};

// Keeps each text once. Views that are given the same table share their texts; the table must
// outlive them.
class Txt_text_table {
public:
    // The table's copy of the text, made if there is none yet. Zero-terminated; it lives as long as
    // the table.
    [[nodiscard]] std::u16string_view insert(std::u16string_view text);

    // The table's copy of the text; its data is null when there is none.
    [[nodiscard]] std::u16string_view lookup(std::u16string_view text) const;

private:
    Txt_text_store store_;
    std::unordered_set<std::u16string_view> texts_;
};

} // namespace txt

#pragma GCC visibility pop
