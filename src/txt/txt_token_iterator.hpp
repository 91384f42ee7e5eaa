#pragma once

#include "txt/txt_physical_token.hpp"

#include <cstddef>
#include <iterator>

namespace txt {

// Walks the physical tokens of a view, both ways. Valid while the view's tokens stay as they are.
class Txt_token_iterator {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = Txt_physical_token;
    using difference_type = std::ptrdiff_t;
    using pointer = const Txt_physical_token*;
    using reference = const Txt_physical_token&;

    Txt_token_iterator() = default;
    // At `token`, or, null, past `last`, the view's last one.
    Txt_token_iterator(pointer token, pointer last) : token_(token), last_(last) {}

    reference operator*() const { return *token_; }
    pointer operator->() const { return token_; }

    Txt_token_iterator& operator++() {
        token_ = token_->next();
        return *this;
    }
    Txt_token_iterator operator++(int) {
        const Txt_token_iterator before = *this;
        ++*this;
        return before;
    }
    Txt_token_iterator& operator--() {
        token_ = token_ != nullptr ? token_->previous() : last_;
        return *this;
    }
    Txt_token_iterator operator--(int) {
        const Txt_token_iterator before = *this;
        --*this;
        return before;
    }

    bool operator==(const Txt_token_iterator&) const = default;

private:
    pointer token_ = nullptr;
    pointer last_ = nullptr;
};

} // namespace txt
