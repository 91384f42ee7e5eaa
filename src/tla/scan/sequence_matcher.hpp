#pragma once

#include "tla/scan/chunk_place.hpp"
#include "tla/scan/chunk_words.hpp"
#include "tla/scan/long_follower.hpp"
#include "tla/scan/occurrence.hpp"
#include "tla/scan/scan_tables.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace tla {

// Finds the values of one kind, Simple or SimpleNC, in a text that goes by chunk by chunk: holds
// what values may begin with and still goes on, each with the readings that it stands in. Where the
// readings differ, each goes its own way; behind that they share what follows. Long beginnings are
// given to a follower: one for all readings until these differ, then one for each.
class Sequence_matcher {
public:
    Sequence_matcher(Value_kind kind, const Scan_hashes& hashes)
        : kind_(kind),
          hashes_(hashes),
          followers_{Long_follower(kind, hashes), Long_follower(kind, hashes),
                     Long_follower(kind, hashes)} {}

    void start();
    [[nodiscard]] bool is_idle() const { return open_.empty() && !is_following_; }
    // Where the first of what may still go on begins.
    [[nodiscard]] std::optional<Text_place> oldest() const;

    // Shows what occurs to `take(occurrence)`.
    template <typename Take>
    void read(std::span<const Reading_tokens> readings, const Chunk_place& place,
              const Scan_tables& tables, Take take);

private:
    struct Beginning {
        std::uint64_t hash;
        Text_place first;
        std::uint64_t line;
        std::uint8_t readings;
        std::uint8_t length; // in tokens
    };

    void split_readings();
    void note_followers();
    // Whether the follower goes through any of the readings.
    [[nodiscard]] bool follows(std::size_t follower, std::uint8_t readings) const {
        return readings_differ_ ? (readings >> follower & 1U) != 0 : follower == 0;
    }
    void follow(const Beginning& beginning, const Long_values& values);
    template <typename Take>
    void take_long(const Chunk_token& token, std::uint8_t readings, const Chunk_place& place,
                   const Scan_tables& tables, Take& take);
    template <typename Take>
    void extend_all(const Chunk_token& token, const Chunk_place& place, const Scan_tables& tables,
                    Take& take);
    template <typename Take>
    void read_token(const Chunk_token& token, std::uint8_t readings, const Chunk_place& place,
                    const Scan_tables& tables, Take& take);

    Value_kind kind_;
    const Scan_hashes& hashes_;
    std::vector<Beginning> open_;    // by their first characters
    std::vector<Beginning> before_;  // those in front of a chunk
    std::vector<Beginning> current_; // those of the readings that are gone through

    std::array<Long_follower, 3> followers_; // of the readings, by the bits of their set
    bool readings_differ_ = false;           // since there was nothing to follow
    bool is_following_ = false;
};

template <typename Take>
void Sequence_matcher::take_long(const Chunk_token& token, std::uint8_t readings,
                                 const Chunk_place& place, const Scan_tables& tables, Take& take) {
    for (std::size_t i = 0; i < followers_.size(); ++i) {
        if (!follows(i, readings)) continue;
        for (const auto& found : followers_[i].take(token.value, tables.long_values())) {
            if (!tables.ask(found.hash).is_value) continue;
            take(Occurrence{found.hash, found.first, place.last_word_of(token.span),
                            place.end_of(token.span), found.line, kind_});
        }
    }
}

template <typename Take>
void Sequence_matcher::read_token(const Chunk_token& token, std::uint8_t readings,
                                  const Chunk_place& place, const Scan_tables& tables, Take& take) {
    if (!tables.long_values().empty()) take_long(token, readings, place, tables, take);
    const std::uint64_t alone = hashes_.extended(hashes_.start(kind_), token.value);
    const Value_filter::Answer answer = tables.ask(alone);
    extend_all(token, place, tables, take);
    if (!answer.any()) return;
    const Text_place first = place.first_of(token.span);
    const std::uint64_t line = place.line_at(first.byte);
    if (answer.is_value) {
        take(Occurrence{alone, first, place.last_word_of(token.span), place.end_of(token.span),
                        line, kind_});
    }
    if (answer.begins_one) current_.push_back({alone, first, line, readings, 1});
}

// By the next token. Those that nothing goes on from are dropped, in place.
template <typename Take>
void Sequence_matcher::extend_all(const Chunk_token& token, const Chunk_place& place,
                                  const Scan_tables& tables, Take& take) {
    std::size_t kept = 0;
    for (Beginning beginning : current_) {
        beginning.hash = hashes_.extended(beginning.hash, token.value);
        ++beginning.length;
        const Value_filter::Answer answer = tables.ask(beginning.hash);
        if (answer.is_value) {
            take(Occurrence{beginning.hash, beginning.first, place.last_word_of(token.span),
                            place.end_of(token.span), beginning.line, kind_});
        }
        if (!answer.begins_one) continue;
        if (beginning.length == Scan_hashes::SHORT_LENGTH) {
            follow(beginning, tables.long_values());
        } else {
            current_[kept++] = beginning;
        }
    }
    current_.resize(kept);
}

template <typename Take>
void Sequence_matcher::read(std::span<const Reading_tokens> readings, const Chunk_place& place,
                            const Scan_tables& tables, Take take) {
    if (is_idle()) start();
    if (readings.size() == 1) {
        std::swap(open_, current_);
        for (const Chunk_token& token : readings.front().tokens) {
            read_token(token, readings.front().readings, place, tables, take);
        }
        std::swap(open_, current_);
        note_followers();
        return;
    }
    split_readings();
    std::swap(open_, before_);
    open_.clear();
    for (const Reading_tokens& reading : readings) {
        current_.clear();
        for (Beginning beginning : before_) {
            beginning.readings &= reading.readings;
            if (beginning.readings != 0) current_.push_back(beginning);
        }
        for (const Chunk_token& token : reading.tokens) {
            read_token(token, reading.readings, place, tables, take);
        }
        open_.insert(open_.end(), current_.begin(), current_.end());
    }
    std::ranges::stable_sort(open_, {}, [](const Beginning& b) { return b.first.byte; });
    note_followers();
}

} // namespace tla
