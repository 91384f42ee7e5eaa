#pragma once

#include "tla/scan/scan_hashes.hpp"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tla {

// What a data set has of values of more than Scan_hashes::SHORT_LENGTH token values. In a text that
// repeats a word, such a value may begin at every word; following each beginning word by word would
// take as many steps as the value is long, for each. So a long beginning is looked at again only
//   - at checkpoints, where its length has doubled: is there a value that begins so, and
//   - at the lengths that values have which begin with the last checkpoint.
class Long_values {
public:
    // At `length`, what began with the checkpoint `from` ends a value or reaches the next one.
    struct Step {
        std::uint64_t from; // a hash, see Scan_hashes::of_long()
        std::uint32_t length;
        // NOLINTNEXTLINE(modernize-use-nullptr): no pointer
        auto operator<=>(const Step&) const = default;
    };

    // Of a long value of a field, as it lies in its record.
    void add(const Scan_hashes& hashes, Value_kind kind, std::span<const std::byte> values);
    // All are added.
    void finish(const Scan_hashes& hashes);

    [[nodiscard]] bool empty() const { return steps_.empty(); }
    // Token values of the longest one.
    [[nodiscard]] std::size_t longest() const { return longest_; }
    // Those from a checkpoint, by their lengths; none when no value begins so.
    [[nodiscard]] std::span<const Step> steps_from(std::uint64_t checkpoint) const;
    // The base of the polynomial hash to the power of a length, up to longest().
    [[nodiscard]] std::uint64_t power(std::size_t length) const { return powers_[length]; }

private:
    std::vector<Step> steps_; // sorted, each once
    std::vector<std::uint64_t> powers_;
    std::size_t longest_ = 0;
};

} // namespace tla
