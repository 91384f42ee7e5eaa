#include "tla/scan/long_values.hpp"

#include "records/values/record_layout.hpp"

#include <algorithm>

// Memory: a value of n token values has about log2(n / 16) steps of 16 bytes, which is less than a
// sixteenth of the 8 n bytes that it takes in the file.
namespace tla {

void Long_values::add(const Scan_hashes& hashes, Value_kind kind,
                      std::span<const std::byte> values) {
    const std::size_t count = values.size() / TLA_TOKEN_VALUE_BYTES;
    longest_ = std::max(longest_, count);
    std::size_t checkpoint = Scan_hashes::SHORT_LENGTH;
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        // Checkpoints at 32, 64, 128 and so on: a value has few, and a text that leaves it is found
        // out before it has gone twice as far.
        if (i == checkpoint) {
            checkpoint *= 2;
            const auto length = static_cast<std::uint32_t>(std::min(checkpoint, count));
            steps_.push_back({hashes.of_long(kind, sum, i), length});
        }
        sum = hashes.rolled(sum, tla_value_at(values, i));
    }
}

void Long_values::finish(const Scan_hashes& hashes) {
    if (steps_.empty()) return;
    // Values with a common front share its steps.
    std::ranges::sort(steps_);
    steps_.erase(std::unique(steps_.begin(), steps_.end()), steps_.end());
    steps_.shrink_to_fit();
    powers_.assign(longest_ + 1, 1);
    for (std::size_t length = 1; length <= longest_; ++length) {
        powers_[length] = hashes.next_power(powers_[length - 1]);
    }
}

std::span<const Long_values::Step> Long_values::steps_from(std::uint64_t checkpoint) const {
    const auto begin = std::ranges::lower_bound(steps_, checkpoint, {}, &Step::from);
    const auto end = std::ranges::upper_bound(begin, steps_.end(), checkpoint, {}, &Step::from);
    return {begin, end};
}

} // namespace tla
