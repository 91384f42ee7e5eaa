#include "field_search.hpp"

#include <algorithm>

namespace scan {

namespace {

// The stretches of grouped numbers are many more than their groups at most; a filter that grew with
// them would not be in proportion to the text.
constexpr std::size_t MOST_ENTRIES_A_TOKEN = 8;

std::size_t entries_of(const Text_tokens& tokens, bool is_number) {
    std::size_t entries = 2 * tokens.values.size();
    if (is_number) entries += tokens.numbers.most_values();
    return std::min(entries, MOST_ENTRIES_A_TOKEN * tokens.values.size());
}

std::uint64_t hash_of(std::span<const std::uint64_t> values) {
    std::uint64_t hash = HASH_OF_NOTHING;
    for (const std::uint64_t value : values) {
        hash = extended_hash(hash, value);
    }
    return hash;
}

} // namespace

Field_search::Field_search(const Text_forms& forms, const tla::Formatter_type_id& type)
    : tokens_(forms.of(type)),
      is_number_(type == tla::Tla_ccnum_formatter::TYPE_ID),
      in_text_(entries_of(tokens_, is_number_)) {
    learn_text();
}

void Field_search::learn_text() {
    const std::span<const std::uint64_t> values(tokens_.values);
    for (std::size_t i = 0; i < values.size(); ++i) {
        in_text_.add(hash_of(values.subspan(i, 1)));
        if (i > 0 && !is_number_) in_text_.add(hash_of(values.subspan(i - 1, 2)));
    }
    if (!is_number_) return;
    tokens_.numbers.each_value([this](std::uint64_t value, std::size_t, std::size_t) {
        in_text_.add(hash_of({&value, 1}));
    });
}

bool Field_search::may_occur(std::span<const std::uint64_t> values) const {
    if (values.empty() || (is_number_ && values.size() > 1)) return false;
    if (values.size() == 1) return in_text_.may_hold(hash_of(values));
    for (std::size_t i = 1; i < values.size(); ++i) {
        if (!in_text_.may_hold(hash_of(values.subspan(i - 1, 2)))) return false;
    }
    return true;
}

void Field_search::ask(std::span<const std::uint64_t> values) {
    if (!may_occur(values)) return;
    longest_ = std::max(longest_, values.size());
    std::uint64_t hash = HASH_OF_NOTHING;
    for (const std::uint64_t value : values) {
        hash = extended_hash(hash, value);
        asked_.emplace(hash, false);
    }
}

void Field_search::mark(std::uint64_t hash) {
    const auto found = asked_.find(hash);
    if (found != asked_.end()) found->second = true;
}

void Field_search::answer() {
    if (asked_.empty()) return;
    Sequence_walk(tokens_.values, longest_)
        .run([this](std::uint64_t hash) { return asked_.contains(hash); },
             [this](std::uint64_t hash, std::size_t, std::size_t) { mark(hash); });
    if (!is_number_) return;
    tokens_.numbers.each_value([this](std::uint64_t value, std::size_t, std::size_t) {
        mark(hash_of({&value, 1}));
    });
}

bool Field_search::occurs(std::span<const std::uint64_t> values) const {
    const auto found = asked_.find(hash_of(values));
    return !values.empty() && found != asked_.end() && found->second;
}

} // namespace scan
