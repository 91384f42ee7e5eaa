#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace tla {

// An occurrence of a key's value that waits until all is known of what stands around it, by its
// number in the window.
struct Key_place {
    std::uint64_t byte; // of its first character
    std::uint64_t end;
    std::uint64_t number;
    // NOLINTNEXTLINE(modernize-use-nullptr): no pointer
    auto operator<=>(const Key_place&) const = default;
};

// Those that wait, the first in the text at the front: a long one that begins before a short one is
// found after it.
class Key_places {
public:
    void clear() { heap_.clear(); }
    [[nodiscard]] bool empty() const { return heap_.empty(); }
    [[nodiscard]] const Key_place& front() const { return heap_.front(); }
    void push(const Key_place& place) {
        heap_.push_back(place);
        std::ranges::push_heap(heap_, std::greater());
    }
    void pop() {
        std::ranges::pop_heap(heap_, std::greater());
        heap_.pop_back();
    }

private:
    std::vector<Key_place> heap_;
};

} // namespace tla
