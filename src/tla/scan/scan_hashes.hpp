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

    // Sequences of more values than this have a hash of another kind, which of any part of a text
    // comes from two sums over the text. A power of two.
    static constexpr std::size_t SHORT_LENGTH = 32;
    // The sum over a sequence, from that over all its values but the last: a polynomial modulo
    // 2^61 - 1. The values are mixed first, as others can choose ones that are equal modulo that.
    [[nodiscard]] std::uint64_t rolled(std::uint64_t sum, std::uint64_t value) const {
        return reduced(reduced_product(sum, base_) + (mixed(value) & MODULUS));
    }
    // The sum over what follows `before` up to `all`; `power` is the base's, to the length of it.
    [[nodiscard]] static std::uint64_t rolled_from(std::uint64_t before, std::uint64_t all,
                                                   std::uint64_t power) {
        return reduced(all + MODULUS - reduced_product(before, power));
    }
    [[nodiscard]] std::uint64_t next_power(std::uint64_t power) const {
        return reduced_product(power, base_);
    }
    [[nodiscard]] std::uint64_t of_long(Value_kind kind, std::uint64_t sum,
                                        std::size_t length) const {
        return extended(extended(start(kind), length), sum);
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

    // Modulo 2^61 - 1, where the upper bits count as much as the lower ones that they are added to.
    static constexpr std::uint64_t MODULUS = (std::uint64_t{1} << 61U) - 1;
    [[nodiscard]] static std::uint64_t reduced(std::uint64_t number) {
        const std::uint64_t sum = (number & MODULUS) + (number >> 61U);
        return sum >= MODULUS ? sum - MODULUS : sum;
    }
    [[nodiscard]] static std::uint64_t reduced_product(std::uint64_t a, std::uint64_t b) {
        const Wide_product product = wide_product(a, b);
        return reduced((product.low & MODULUS) + (product.high << 3U | product.low >> 61U));
    }

    std::array<std::uint64_t, VALUE_KINDS> starts_{};
    std::uint64_t left_ = 0;
    std::uint64_t right_ = 0;
    std::uint64_t pair_left_ = 0;
    std::uint64_t pair_right_ = 0;
    std::uint64_t base_ = 0;
};

} // namespace tla
