#include "txt/txt_text_store.hpp"

#include <algorithm>

namespace txt {

namespace {

// Each piece of memory is twice as large as the one before, since the amount of text is not known.
// At most 1 MiB, so that no more than that stays unused.
constexpr std::size_t LARGEST_STEP = std::size_t{1} << 19; // units

} // namespace

// Text is put together at the end of the newest piece, and stays there once it is kept: no copy
// from a buffer of its own.
void Txt_text_store::append(std::u16string_view text) {
    if (static_cast<std::size_t>(limit_ - at_) < text.size()) grow(text.size());
    at_ = std::copy(text.begin(), text.end(), at_);
}

// Moves the open text to new memory of at least twice its size, so that building a text takes
// linear time.
void Txt_text_store::grow(std::size_t units) {
    if (further_ == nullptr) further_ = std::make_unique<Further>();
    const std::u16string_view open = open_text();
    // The open text may be longer than a step. One unit more is for the zero that ends it.
    const std::size_t step = std::min(2 * further_->newest_units, LARGEST_STEP);
    const std::size_t size = std::max(step, 2 * (open.size() + units)) + 1;
    further_->pieces.push_back(std::make_unique_for_overwrite<char16_t[]>(size));
    further_->newest_units = size;
    char16_t* const start = further_->pieces.back().get();
    at_ = std::copy(open.begin(), open.end(), start);
    open_ = start;
    limit_ = start + size - 1;
}

// The set's keys are views of texts in the store, which do not move. So a look-up makes no string.
std::u16string_view Txt_text_table::insert(std::u16string_view text) {
    const std::u16string_view known = lookup(text);
    if (known.data() != nullptr) return known;
    // An open text that was never kept is given up: its memory is used for this one.
    store_.clear();
    store_.append(text);
    return *texts_.insert(store_.keep()).first;
}

std::u16string_view Txt_text_table::lookup(std::u16string_view text) const {
    const auto found = texts_.find(text);
    return found != texts_.end() ? *found : std::u16string_view();
}

} // namespace txt
