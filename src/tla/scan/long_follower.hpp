#pragma once

#include "tla/scan/long_values.hpp"
#include "tla/scan/occurrence.hpp"

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

namespace tla {

// Follows beginnings of long values through the tokens of one reading of a text. Each is touched
// only at the steps of Long_values, where the hash of its tokens comes from two sums over the
// reading: so a text in which every word begins a value of 60,000 costs a dozen touches a word.
class Long_follower {
public:
    struct Found { // a value that ends with the last token, if the filter says that it is one
        std::uint64_t hash;
        Text_place first;
        std::uint64_t line;
    };

    Long_follower(Value_kind kind, const Scan_hashes& hashes) : kind_(kind), hashes_(&hashes) {}

    // What follows has nothing to do with what was before.
    void start();
    [[nodiscard]] bool is_idle() const { return open_.empty(); }
    // Where the first beginning begins.
    [[nodiscard]] std::optional<Text_place> oldest() const {
        return open_.empty() ? std::nullopt : std::optional(open_.front().first);
    }

    // Takes the reading's next token and gives what may end with it, valid until the next call. The
    // same values as long as there are beginnings.
    std::span<const Found> take(std::uint64_t value, const Long_values& values);
    // The last SHORT_LENGTH tokens begin a value, perhaps.
    void begin(Text_place first, std::uint64_t line, const Long_values& values);

private:
    struct Beginning {
        std::uint64_t token; // its first one, by its number in the reading
        Text_place first;
        std::uint64_t line;
        std::span<const Long_values::Step> steps; // that are still to come; none: given up
        std::uint64_t next;                       // the next one that is due at the same token
    };
    static constexpr std::uint64_t NONE = ~std::uint64_t{0};

    [[nodiscard]] Beginning& at(std::uint64_t number) {
        return open_[static_cast<std::size_t>(number - open_begin_)];
    }
    [[nodiscard]] std::uint64_t hash_from(std::uint64_t token, const Long_values& values) const;
    void look_at(std::uint64_t number, const Long_values& values);
    void wait(std::uint64_t number);
    void forget();

    Value_kind kind_;
    const Scan_hashes* hashes_;
    // The sums in front of each token that is still needed, and behind the last one.
    std::deque<std::uint64_t> sums_{0};
    std::uint64_t sums_begin_ = 0;
    std::uint64_t tokens_ = 0; // so far
    // By their first tokens; numbers stay when others are forgotten.
    std::deque<Beginning> open_;
    std::uint64_t open_begin_ = 0;
    // Which ones are due behind each token, as lists: nothing waits longer than the longest value.
    std::vector<std::uint64_t> due_;
    std::vector<Found> found_;
};

} // namespace tla
