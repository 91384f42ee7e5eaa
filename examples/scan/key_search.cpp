#include "key_search.hpp"

#include <algorithm>
#include <tuple>
#include <unordered_set>

namespace scan {

namespace {

bool is_number(const tla::Formatter_type_id& type) {
    return type == tla::Tla_ccnum_formatter::TYPE_ID;
}

// The search for one key's values.
class Key_search {
public:
    Key_search(Data_set& data_set, std::size_t key, const Text_forms& forms, Key_hits& results)
        : data_set_(data_set),
          key_(key),
          original_(forms.original),
          type_(data_set.fields()[data_set.keys()[key].field].type),
          tokens_(forms.of(type_)),
          results_(results) {}

    void run() {
        const std::size_t longest = data_set_.keys()[key_].longest;
        search_tokens(is_number(type_) ? std::min<std::size_t>(longest, 1) : longest);
        if (is_number(type_) && longest > 0) search_numbers();
    }

private:
    void search_tokens(std::size_t longest) {
        const std::size_t count = tokens_.values.size();
        data_set_.expect(count * std::min(longest, count));
        Sequence_walk(tokens_.values, longest)
            .run([this](std::uint64_t hash) { return data_set_.begins_so(key_, hash); },
                 [this](std::uint64_t, std::size_t first, std::size_t length) {
                     const std::span<const std::uint64_t> values(tokens_.values);
                     look_up(values.subspan(first, length), first, first + length - 1);
                 });
    }

    // A number that stands both in groups and as one token is looked up twice, as either may come
    // first.
    void search_numbers() {
        data_set_.expect(tokens_.numbers.most_values());
        tokens_.numbers.each_value(
            [this](std::uint64_t value, std::size_t first, std::size_t last) {
                numbers_.push_back({value, extended_hash(HASH_OF_NOTHING, value), first, last});
                data_set_.prepare(key_, numbers_.back().hash);
                if (numbers_.size() == BATCH) look_up_numbers();
            });
        look_up_numbers();
    }

    void look_up_numbers() {
        for (const Number& number : numbers_) {
            const bool is_new =
                data_set_.begins_so(key_, number.hash) && known_numbers_.insert(number.hash).second;
            if (is_new) look_up({&number.value, 1}, number.first, number.last);
        }
        numbers_.clear();
    }

    void look_up(std::span<const std::uint64_t> values, std::size_t first, std::size_t last) {
        offsets_.clear();
        data_set_.find(values, key_, offsets_);
        if (offsets_.empty()) return;
        const auto hit = static_cast<std::uint32_t>(results_.hits.size());
        results_.hits.push_back({tokens_.places[first], tokens_.end_of(last, original_), key_});
        for (const std::int64_t offset : offsets_) {
            results_.candidates.push_back({offset, hit});
        }
    }

    struct Number {
        std::uint64_t value;
        std::uint64_t hash;
        std::size_t first;
        std::size_t last;
    };
    static constexpr std::size_t BATCH = 64; // as many as memory can be asked for together

    Data_set& data_set_;
    std::size_t key_;
    std::u16string_view original_;
    tla::Formatter_type_id type_;
    const Text_tokens& tokens_;
    Key_hits& results_;
    std::vector<std::int64_t> offsets_;
    std::vector<Number> numbers_; // the batch at hand
    std::unordered_set<std::uint64_t> known_numbers_;
};

// Keeps of each record the hit that stands first, of equal places that of the first key.
void keep_first_hits(Key_hits& results) {
    const auto order = [&results](const Candidate& candidate) {
        const Key_hit& hit = results.hits[candidate.hit];
        return std::tuple(candidate.record_offset, hit.place, hit.key);
    };
    std::ranges::sort(results.candidates, {}, order);
    const auto rest = std::ranges::unique(results.candidates, {}, &Candidate::record_offset);
    results.candidates.erase(rest.begin(), rest.end());
}

} // namespace

Key_hits search_keys(Data_set& data_set, const Text_forms& forms) {
    Key_hits results;
    for (std::size_t key = 0; key < data_set.keys().size(); ++key) {
        Key_search(data_set, key, forms, results).run();
    }
    keep_first_hits(results);
    return results;
}

} // namespace scan
