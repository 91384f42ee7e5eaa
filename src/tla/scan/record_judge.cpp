#include "tla/scan/record_judge.hpp"

#include <algorithm>
#include <limits>
#include <utility>

// Two ways lead to the records of a key's value: all of them one by one, or, where they are many or
// long, by pairs with what stands within reach. Both look at the record itself in the end, as
// hashes in tables are cut short. Tested by Scan.FindsWhatAModelFinds, which has values that many
// records share.
namespace tla {

namespace {

constexpr std::uint64_t NO_BOUND = std::numeric_limits<std::uint64_t>::max();

} // namespace

Record_judge::Record_judge(const Index_state& index, std::size_t least,
                           std::optional<std::uint64_t> within)
    : index_(index), least_(least), within_(within), reported_(index.records->number_limit()) {
    for (const std::size_t key : index.keys) {
        const Value_kind kind = index.records->kinds()[key];
        if (kind != Value_kind::none) is_key_kind_[static_cast<std::size_t>(kind)] = true;
    }
}

void Record_judge::start(const Scan_tables& tables) {
    reported_.clear();
    done_.clear();
    checked_.clear();
    tables_ = &tables;
    choose_kinds();
}

// Of n fields that can occur, at least `least` do in a record that is reported; so of any
// n - least + 1 beside the key, one does at least. Those of which the data set has the most
// different values are asked for: fewest records share them.
void Record_judge::choose_kinds() {
    std::array<std::size_t, VALUE_KINDS> fields{};
    std::size_t all = 0;
    for (const Value_kind kind : index_.records->kinds()) {
        if (kind == Value_kind::none) continue;
        ++fields[static_cast<std::size_t>(kind)];
        ++all;
    }
    const std::size_t wanted = least_ > all ? 0 : all - least_ + 1;
    std::array<std::size_t, VALUE_KINDS> order{0, 1, 2};
    std::ranges::sort(order, std::greater(), [this](std::size_t kind) {
        return tables_->different(static_cast<Value_kind>(kind));
    });
    for (std::size_t key = 0; key < VALUE_KINDS; ++key) {
        std::size_t asked = 0;
        for (const std::size_t kind : order) {
            asked_kinds_[key][kind] = asked < wanted;
            asked += fields[kind] - (kind == key && fields[kind] > 0 ? 1 : 0);
        }
    }
}

// Asked of every occurrence, so a long list is not gone through: a key of many records mostly is
// one.
bool Record_judge::may_be_key(const Occurrence& occurrence) const {
    if (!is_key_kind_[static_cast<std::size_t>(occurrence.kind)]) return false;
    constexpr std::uint64_t FEW = 64;
    const Record_table& records = tables_->by_key();
    const Record_table::Range entries = records.entries_of(occurrence.hash);
    if (entries.size() > FEW) return true;
    for (std::uint64_t entry = entries.begin; entry < entries.end; ++entry) {
        if (records.may_be(entry, occurrence.hash)) return true;
    }
    return false;
}

// Bounds that would pass the text's front or the largest number stop there.
Word_range Record_judge::reach_of(const Occurrence& occurrence) const {
    if (!within_) return {0, NO_BOUND};
    const std::uint64_t first = occurrence.first.word;
    const std::uint64_t last = occurrence.last_word;
    return {first > *within_ ? first - *within_ : 0,
            last < NO_BOUND - *within_ ? last + *within_ : NO_BOUND};
}

// Records are looked at one by one where there are fewer of them than words to ask about.
void Record_judge::judge(std::uint64_t number, const Occurrence_window& window,
                         std::vector<Found_record>& found) {
    const Occurrence& key = window.at(number).occurrence;
    if (is_done(key.hash)) return;
    if (least_ == 1) return judge_all(key, window, found);
    const auto pairs = tables_->by_pair(key.hash);
    const std::uint64_t records = tables_->by_key().entries_of(key.hash).size();
    const std::uint64_t words = window.end() - window.begin();
    // Looking at a record costs a step for each of its fields, asking for a pair one for each word.
    const bool are_few = records * index_.records->kinds().size() <= words;
    if (!pairs || (are_few && !within_)) {
        judge_all(key, window, found);
    } else {
        judge_pairs(window.at(number), *pairs, window, found);
    }
}

// With one field each record of the value is reported here or was before.
void Record_judge::judge_all(const Occurrence& key, const Occurrence_window& window,
                             std::vector<Found_record>& found) {
    const Record_table& records = tables_->by_key();
    const Record_table::Range entries = records.entries_of(key.hash);
    bool are_reported = true;
    for (std::uint64_t entry = entries.begin; entry < entries.end; ++entry) {
        if (!records.may_be(entry, key.hash)) continue;
        are_reported &= judge_record(records.offset(entry), key, window, found);
    }
    if (are_reported || least_ == 1) done_.insert(key.hash);
}

// Those in the window that were not gone through for an earlier occurrence of the value. What is
// left out was within reach of none: else its records were reported there.
Record_judge::Numbers Record_judge::unchecked(const Occurrence& key,
                                              const Occurrence_window& window) {
    const Word_range reach = reach_of(key);
    const std::uint64_t end = window.end_within(reach.last);
    if (least_ > 2) return {window.begin(), end};
    constexpr std::size_t FORGET_FROM = 4096;
    if (checked_.size() > FORGET_FROM && checked_.size() > 2 * (window.end() - window.begin())) {
        std::erase_if(checked_, [&window](const auto& c) { return c.second <= window.begin(); });
    }
    std::uint64_t& checked = checked_[key.hash];
    const std::uint64_t first = std::max(checked, window.begin());
    checked = std::max(first, end);
    for (std::uint64_t number = end; number > first && window.at(number - 1).most > reach.last;
         --number) {
        if (window.at(number - 1).occurrence.last_word > reach.last) checked = number - 1;
    }
    return {first, end};
}

// From the last one to the first, which makes no difference to what is found. Where the key stands
// some words behind its previous occurrence, whatever stands as many words behind its own was asked
// for there: a text that repeats itself is gone through once and not again at each word.
void Record_judge::judge_pairs(const Occurrence_window::Entry& key, const Pairs_of_bucket& pairs,
                               const Occurrence_window& window, std::vector<Found_record>& found) {
    const auto [begin, end] = unchecked(key.occurrence, window);
    for (std::uint64_t number = end; number > begin;) {
        const Occurrence_window::Entry& entry = window.at(--number);
        // Only for N of 2: with more fields, a pair that was asked for may still miss one that is
        // within reach here.
        if (least_ == 2 && key.shift != 0 && entry.shift == key.shift) {
            number = std::max(entry.run, begin);
            continue;
        }
        // Of equal values that stand in a row, one is asked for.
        const Word_range reach = reach_of(key.occurrence);
        const bool is_asked = entry.previous != Occurrence_window::NONE &&
                              entry.previous >= begin &&
                              reach.holds(window.at(entry.previous).occurrence);
        if (!is_asked && reach.holds(entry.occurrence)) {
            judge_beside(key.occurrence, entry.occurrence, pairs, window, found);
        }
    }
}

// The key's records that have the other value, too.
void Record_judge::judge_beside(const Occurrence& key, const Occurrence& other,
                                const Pairs_of_bucket& pairs, const Occurrence_window& window,
                                std::vector<Found_record>& found) {
    const auto& asked = asked_kinds_[static_cast<std::size_t>(key.kind)];
    if (!asked[static_cast<std::size_t>(other.kind)]) return;
    const std::uint64_t pair = index_.hashes.paired(key.hash, other.hash);
    if (least_ > 2) {
        static_cast<void>(judge_pair(pair, key, pairs, window, found));
        return;
    }
    // One value may be a key's in some records and the other in others.
    const std::uint64_t as_key = index_.hashes.extended(key.hash, other.hash);
    if (!is_done(as_key) && judge_pair(pair, key, pairs, window, found)) done_.insert(as_key);
}

// Whether there are records with both values.
bool Record_judge::judge_pair(std::uint64_t pair, const Occurrence& key,
                              const Pairs_of_bucket& pairs, const Occurrence_window& window,
                              std::vector<Found_record>& found) {
    bool any = false;
    const Pairs_of_bucket::Range entries = pairs.entries_of(pair);
    for (std::uint64_t entry = entries.begin; entry < entries.end; ++entry) {
        if (pairs.may_be(entry, pair)) any |= judge_record(pairs.offset(entry), key, window, found);
    }
    return any;
}

// True when the record has the key's value and enough fields within reach.
bool Record_judge::judge_record(std::uint64_t offset, const Occurrence& key,
                                const Occurrence_window& window, std::vector<Found_record>& found) {
    // Before the record is read: of a frequent value most records were reported long ago.
    if (is_reported(offset)) return true;
    const Word_range reach = reach_of(key);
    std::size_t key_order = NO_KEY;
    fields_.clear();
    index_.records->each_field(offset, [&](std::size_t field, std::span<const std::byte> values) {
        const Value_kind kind = index_.records->kinds()[field];
        if (values.empty() || kind == Value_kind::none) return;
        const std::uint64_t hash = hash_of_values(index_.hashes, kind, values);
        if (hash == key.hash) {
            key_order = std::min(key_order, index_.key_order[field]);
        } else if (!window.occurs(hash, reach)) {
            return;
        }
        fields_.push_back(field);
    });
    if (key_order == NO_KEY || fields_.size() < least_) return false;
    found.push_back({offset, key_order, key.end, key.line, fields_});
    return true;
}

} // namespace tla
