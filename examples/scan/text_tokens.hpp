#pragma once

#include "scl/crc/scl_crc64.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace scan {

// More words and marks than a text may have are told by this (a text then has no lines).
inline constexpr std::size_t MOST_TOKENS = 15000000;

// A stretch of digit groups has at most as many digits, but for a whole run and a single group,
// which have any number: a data set does not say how long its numbers are. The longest that are in
// use, of payment slips and chip identities, have 48.
inline constexpr std::size_t MOST_DIGITS = 64;

// Numbers that are written in groups, such as 4111 1111-1111 1111, and other tokens from which the
// form of card numbers removes something.
class Number_runs {
public:
    // Tokens come in the order of the text. `joined`: the group before is the one added last, and
    // between the two is nothing but one blank or hyphen.
    void add_group(std::uint32_t token, std::u16string_view digits, bool joined);
    // Another token and what is left of it.
    void add_other(std::uint32_t token, std::u16string_view text);

    // Calls `take(value, first_token, last_token)` for every stretch of two groups and more, and
    // for every other token; a single group is a token like others and need not come.
    template <typename Take>
    void each_value(Take take) const;
    // No fewer than each_value gives.
    [[nodiscard]] std::uint64_t most_values() const;

private:
    struct Group {
        std::size_t end; // of its digits
        std::uint32_t token;
        bool joined; // to the one before
    };

    [[nodiscard]] std::size_t begin_of(std::size_t group) const {
        return group == 0 ? 0 : groups_[group - 1].end;
    }
    [[nodiscard]] std::size_t end_of_run(std::size_t group) const;
    template <typename Take>
    void each_value_from(std::size_t first, std::size_t run, std::size_t run_end, Take& take) const;

    std::u16string digits_;
    std::vector<Group> groups_;
    bool ends_alone_ = false; // the last group has none that it is joined to
};

// The words and marks of a text in one form, without its blanks.
struct Text_tokens {
    std::vector<std::uint64_t> values;
    std::vector<std::size_t> places; // where each begins in the original
    Number_runs numbers;

    // How a form is taken apart. Only the numbers of a form in which they are looked for are kept.
    enum class Form { simple, simple_with_numbers, lower_case };

    // Throws std::length_error for more than MOST_TOKENS.
    Text_tokens(std::u16string_view original, Form form);

    // Where a token ends in the original: no token holds white space.
    [[nodiscard]] std::size_t end_of(std::size_t token, std::u16string_view original) const;

private:
    void make_room(std::u16string_view text);
};

template <typename Take>
void Number_runs::each_value(Take take) const {
    for (std::size_t run = 0; run < groups_.size();) {
        const std::size_t run_end = end_of_run(run);
        for (std::size_t first = run; first < run_end; ++first) {
            each_value_from(first, run, run_end, take);
        }
        run = run_end;
    }
}

template <typename Take>
void Number_runs::each_value_from(std::size_t first, std::size_t run, std::size_t run_end,
                                  Take& take) const {
    const std::size_t begin = begin_of(first);
    scl::Scl_crc64 crc;
    for (std::size_t last = first; last < run_end; ++last) {
        const std::size_t end = groups_[last].end;
        const bool is_short = end - begin <= MOST_DIGITS;
        if (!is_short && first != run) return;
        const std::size_t from = begin_of(last);
        crc.update(std::as_bytes(std::span(digits_).subspan(from, end - from)));
        const bool is_single = last == first && run_end - run > 1;
        if (is_single || !(is_short || last + 1 == run_end)) continue;
        take(crc.result(true), groups_[first].token, groups_[last].token);
    }
}

} // namespace scan
