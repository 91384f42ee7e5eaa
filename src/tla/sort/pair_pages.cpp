#include "tla/sort/pair_pages.hpp"

#include "scl/io/scl_file.hpp"

#include <algorithm>
#include <new>
#include <utility>

namespace tla {

namespace {

// Memory comes in slabs. The first ones are small, 256 KiB each, so that a job of few pairs does
// not take 2 MiB. Once the small ones amount to a large page, every further slab is one.
constexpr std::size_t SMALL_SLAB_PAGES = 64;
constexpr std::size_t LARGE_SLAB_PAGES = scl::SCL_LARGE_PAGE / sizeof(Pair_page);
constexpr std::size_t SMALL_SLABS = LARGE_SLAB_PAGES / SMALL_SLAB_PAGES;

} // namespace

Pair_page* Pair_pages::take() {
    if (free_ != nullptr) {
        Pair_page* const page = free_;
        free_ = page->next;
        return page;
    }
    if (used_in_last_slab_ == last_slab_pages_) add_slab();
    return &slabs_.back()[used_in_last_slab_++];
}

// Small slabs have the alignment of large ones: then Free, which gets no size, frees both alike. It
// also puts each page at a multiple of its size, as Pair_bucket requires.
void Pair_pages::add_slab() {
    const bool is_large = slabs_.size() >= SMALL_SLABS;
    const std::size_t pages = is_large ? LARGE_SLAB_PAGES : SMALL_SLAB_PAGES;
    // Owned before the list grows, which may fail for lack of memory.
    std::unique_ptr<Pair_page[], Free> slab(static_cast<Pair_page*>(
        ::operator new (pages * sizeof(Pair_page), std::align_val_t{scl::SCL_LARGE_PAGE})));
    slabs_.push_back(std::move(slab));
    if (is_large) {
        scl::scl_prefer_large_pages(std::as_writable_bytes(std::span(slabs_.back().get(), pages)));
    }
    last_slab_pages_ = pages;
    used_in_last_slab_ = 0;
}

void Pair_pages::Free::operator()(Pair_page* slab) const {
    ::operator delete (slab, std::align_val_t{scl::SCL_LARGE_PAGE});
}

void Pair_pages::give_back(Pair_page* page) {
    page->next = free_;
    free_ = page;
}

std::span<const Index_pair> Pair_bucket::pairs_of(const Pair_page& page) const {
    const Index_pair* const begin = page.pairs.data();
    return {begin, &page == last_page() ? at_ : begin + Pair_page::PAIRS};
}

std::size_t Pair_bucket::size() const {
    std::size_t count = 0;
    for (const Pair_page* page = first_; page != nullptr; page = page->next) {
        count += pairs_of(*page).size();
    }
    return count;
}

bool Pair_bucket::is_uniform() const {
    for (const Pair_page* page = first_; page != nullptr; page = page->next) {
        const std::span<const Index_pair> pairs = pairs_of(*page);
        const std::uint64_t hash = first_->pairs[0].key_hash;
        const auto same = [hash](const Index_pair& pair) { return pair.key_hash == hash; };
        if (!std::all_of(pairs.begin(), pairs.end(), same)) return false;
    }
    return true;
}

void Pair_bucket::add_page(Pair_pages& pages) {
    Pair_page* const page = pages.take();
    page->next = nullptr;
    (first_ == nullptr ? first_ : last_page()->next) = page;
    at_ = page->pairs.data();
}

// The page of the last pair; the bucket is not empty. at_ itself may already be the end of the
// page, which is the start of another one.
Pair_page* Pair_bucket::last_page() const {
    const auto last_pair = std::bit_cast<std::uintptr_t>(at_ - 1);
    return std::bit_cast<Pair_page*>(last_pair - last_pair % sizeof(Pair_page));
}

} // namespace tla
