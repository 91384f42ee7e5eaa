#pragma once

#include "records/values/tla_formatters.hpp"
#include "tla/scan/wide_product.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

namespace tla {

// What fields occur as goes by their type alone: all fields of a type share the values of a text.
enum class Value_kind : std::uint8_t { simple, lower, number, none };
inline constexpr std::size_t VALUE_KINDS = 3; // that occur; a type that nobody knows never does

[[nodiscard]] Value_kind value_kind_of(const Formatter_type_id& type);

// Hashes of sequences of token values. Token values are CRCs, which anybody can make collide, and
// the multiplications below can be run backwards by who knows their numbers. So these are random,
// drawn anew for each data set that is opened.
class Scan_hashes {
public:
    // Throws std::bad_alloc when the system has no random numbers to give.
    [[nodiscard]] static Scan_hashes draw();

    // Of no values yet. A sequence in one kind differs from the same one in another.
    [[nodiscard]] std::uint64_t start(Value_kind kind) const {
        return starts_[static_cast<std::size_t>(kind)];
    }
    // Of a sequence, from that of all its values but the last.
    [[nodiscard]] std::uint64_t extended(std::uint64_t hash, std::uint64_t value) const {
        return folded(hash ^ left_, value ^ right_);
    }
    // Of two sequences that one record has, in either order.
    [[nodiscard]] std::uint64_t paired(std::uint64_t a, std::uint64_t b) const {
        return a < b ? folded(a ^ pair_left_, b ^ pair_right_)
                     : folded(b ^ pair_left_, a ^ pair_right_);
    }
    // Of up to eight bytes that are compared in full afterwards.
    [[nodiscard]] std::uint64_t mixed(std::uint64_t bits) const {
        return folded(bits ^ pair_left_, right_);
    }

private:
    // The two halves of the product, laid over each other.
    [[nodiscard]] static std::uint64_t folded(std::uint64_t a, std::uint64_t b) {
        const Wide_product product = wide_product(a, b);
        return product.low ^ product.high;
    }

    std::array<std::uint64_t, VALUE_KINDS> starts_{};
    std::uint64_t left_ = 0;
    std::uint64_t right_ = 0;
    std::uint64_t pair_left_ = 0;
    std::uint64_t pair_right_ = 0;
};

} // namespace tla
