#include "tla/scan/long_follower.hpp"

#include <algorithm>
#include <bit>

// Tested by Scan.FindsLongValues, with few words and beginnings that go on from one another.
namespace tla {

void Long_follower::start() {
    if (tokens_ == 0) return; // asked for each chunk of most texts
    sums_.assign(1, 0);
    sums_begin_ = 0;
    tokens_ = 0;
    open_.clear();
    open_begin_ = 0;
    due_.clear();
}

// Of the tokens from there on.
std::uint64_t Long_follower::hash_from(std::uint64_t token, const Long_values& values) const {
    const auto length = static_cast<std::size_t>(tokens_ - token);
    const std::uint64_t before = sums_[static_cast<std::size_t>(token - sums_begin_)];
    const std::uint64_t sum = hashes_->rolled_from(before, sums_.back(), values.power(length));
    return hashes_->of_long(kind_, sum, length);
}

std::span<const Long_follower::Found> Long_follower::take(std::uint64_t value,
                                                          const Long_values& values) {
    sums_.push_back(hashes_->rolled(sums_.back(), value));
    ++tokens_;
    found_.clear();
    if (!open_.empty()) {
        std::uint64_t& due = due_[static_cast<std::size_t>(tokens_) & (due_.size() - 1)];
        // Beginnings wait in a ring by the token at which their next step is due, so that a token
        // costs only those that are due with it.
        std::uint64_t number = due;
        due = NONE;
        while (number != NONE) {
            const std::uint64_t next = at(number).next;
            look_at(number, values);
            number = next;
        }
    }
    forget();
    return found_;
}

void Long_follower::begin(Text_place first, std::uint64_t line, const Long_values& values) {
    const std::uint64_t token = tokens_ - Scan_hashes::SHORT_LENGTH;
    const auto steps = values.steps_from(hash_from(token, values));
    // No value of the data set goes on from these tokens.
    if (steps.empty()) return;
    if (due_.empty()) due_.assign(std::bit_ceil(values.longest() + 1), NONE);
    open_.push_back({token, first, line, steps, NONE});
    wait(open_begin_ + open_.size() - 1);
}

// One that has come to its next step.
void Long_follower::look_at(std::uint64_t number, const Long_values& values) {
    Beginning& beginning = at(number);
    const std::uint32_t length = beginning.steps.front().length;
    const std::uint64_t hash = hash_from(beginning.token, values);
    found_.push_back({hash, beginning.first, beginning.line});
    beginning.steps = beginning.steps.subspan(1);
    // A length that is twice the checkpoint's is the next one, and the last from there.
    if (beginning.steps.empty() && std::has_single_bit(length)) {
        beginning.steps = values.steps_from(hash);
    }
    if (!beginning.steps.empty()) wait(number);
}

void Long_follower::wait(std::uint64_t number) {
    Beginning& beginning = at(number);
    const std::uint64_t token = beginning.token + beginning.steps.front().length;
    std::uint64_t& due = due_[static_cast<std::size_t>(token) & (due_.size() - 1)];
    beginning.next = due;
    due = number;
}

// Those given up that nothing older stands in front of, and the sums that nothing will ask for.
void Long_follower::forget() {
    while (!open_.empty() && open_.front().steps.empty()) {
        open_.pop_front();
        ++open_begin_;
    }
    const std::uint64_t reach =
        tokens_ - std::min<std::uint64_t>(tokens_, Scan_hashes::SHORT_LENGTH);
    const std::uint64_t needed = open_.empty() ? reach : std::min(reach, open_.front().token);
    while (sums_begin_ < needed) {
        sums_.pop_front();
        ++sums_begin_;
    }
}

} // namespace tla
