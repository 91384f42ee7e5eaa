#include "tla/scan/scan_tables.hpp"

#include <algorithm>
#include <array>

// Tables are counted, laid out and filled in passes over the records: what a pass needs, the one
// before has counted, so nothing grows while it is filled, and memory is known before it is taken.
namespace tla {

namespace {

// Lets memory bring what an operation will touch while others are done: most of them lead to
// another offset of a large table, and would wait for it each. In two steps, as where an entry goes
// is known once its bucket has come from memory.
template <typename Operation, typename Prepare, typename Run>
class Delayed {
public:
    Delayed(Prepare prepare, Run run) : prepare_(prepare), run_(run) {}
    Delayed(const Delayed&) = delete;
    Delayed& operator=(const Delayed&) = delete;

    void push(const Operation& operation) {
        // An operation runs when DEPTH others have come behind it: about the time that memory
        // takes.
        if (next_ >= DEPTH) run_(at(next_ - DEPTH));
        if (next_ >= DEPTH / 2) prepare_(at(next_ - DEPTH / 2));
        at(next_++) = operation;
    }
    void finish() {
        for (std::size_t i = next_ >= DEPTH ? next_ - DEPTH : 0; i < next_; ++i) {
            run_(at(i));
        }
        next_ = 0;
    }

private:
    static constexpr std::size_t DEPTH = 32;

    [[nodiscard]] Operation& at(std::size_t number) { return waiting_[number % DEPTH]; }

    std::array<Operation, DEPTH> waiting_{};
    std::size_t next_ = 0;
    Prepare prepare_;
    Run run_;
};

struct Entry {
    std::uint64_t hash;
    std::uint64_t offset;
};

} // namespace

// One pass over the records after the other.
class Scan_tables::Maker {
public:
    Maker(Scan_tables& tables, const Data_set_records& records, const Key_order& key_order,
          const Scan_hashes& hashes, std::optional<std::span<const std::uint64_t>> offsets)
        : tables_(tables),
          records_(records),
          key_order_(key_order),
          hashes_(hashes),
          offsets_(offsets) {}

    void note_values() {
        const auto run = [this](const Noted& noted) { note(noted); };
        const auto nothing = [](const Noted&) {};
        Delayed<Noted, decltype(nothing), decltype(run)> waiting(nothing, run);
        tables_.has_pairs_.resize(tables_.by_key_.bucket_count());
        each_offset([&](std::uint64_t offset) {
            const std::uint64_t next =
                each_value(offset, [&](std::size_t field, std::span<const std::byte> values) {
                    note_value(field, values, waiting);
                });
            if (next - offset > LONG_RECORD) ask_for_pairs(offset);
            return next;
        });
        waiting.finish();
        tables_.long_values_.finish(hashes_);
    }

    // Gives how many records have a key value that many share.
    std::uint64_t lay_out_keys() {
        std::uint64_t shared = 0;
        tables_.by_key_.lay_out([&](std::size_t bucket, std::uint64_t size) {
            // By the bucket, not by the value: a bit each instead of a second table. Neighbours in
            // a bucket get pairs that are never asked for, which costs little.
            if (size > FEW_RECORDS) tables_.has_pairs_[bucket] = true;
            if (tables_.has_pairs_[bucket]) shared += size;
        });
        return shared;
    }

    // Where all records' entries go is known now; which pairs there are is found on the way. False
    // when their table would take more than `most_bytes`, which is seen at the end.
    [[nodiscard]] bool put_keys(std::uint64_t most_bytes) {
        Record_table& keys = tables_.by_key_;
        const auto prepare = [&keys](const Entry& e) { keys.prefetch_entry(e.hash); };
        const auto put = [&keys](const Entry& e) { keys.put(e.hash, e.offset); };
        Delayed<Entry, decltype(prepare), decltype(put)> entries(prepare, put);
        const auto nothing = [](const Entry&) {};
        const auto count = [this](const Entry& e) { tables_.by_pair_->count(e.hash); };
        Delayed<Entry, decltype(nothing), decltype(count)> pairs(nothing, count);
        std::uint64_t pair_count = 0;
        each_offset([&](std::uint64_t offset) {
            gather(offset);
            for (const Field_value& value : values_) {
                for (std::uint32_t times = value.key_times; times > 0; --times) {
                    keys.prefetch(value.hash);
                    entries.push({value.hash, offset});
                }
            }
            each_pair([&](std::uint64_t hash) {
                tables_.by_pair_->prefetch(hash);
                pairs.push({hash, offset});
                ++pair_count;
            });
            return next_;
        });
        entries.finish();
        pairs.finish();
        return Record_table::bytes_of(pair_count, records_.size()) <= most_bytes;
    }
    // The same pairs in the same order as they were counted in.
    void put_pairs() {
        Record_table& pairs = *tables_.by_pair_;
        pairs.lay_out([](std::size_t, std::uint64_t) {});
        const auto prepare = [&pairs](const Entry& e) { pairs.prefetch_entry(e.hash); };
        const auto put = [&pairs](const Entry& e) { pairs.put(e.hash, e.offset); };
        Delayed<Entry, decltype(prepare), decltype(put)> entries(prepare, put);
        each_offset([&](std::uint64_t offset) {
            gather(offset);
            each_pair([&](std::uint64_t hash) {
                pairs.prefetch(hash);
                entries.push({hash, offset});
            });
            return next_;
        });
        entries.finish();
    }

private:
    struct Noted {
        std::uint64_t hash;
        Value_kind kind;
        bool is_value;
        bool is_key;
    };

    // Which sequences there are; each is written down when its offset has come from memory.
    template <typename Waiting>
    void note_value(std::size_t field, std::span<const std::byte> values, Waiting& waiting) {
        const Value_kind kind = records_.kinds()[field];
        const auto push = [&](std::uint64_t hash, bool is_value) {
            tables_.values_.prefetch(hash);
            const bool is_key = is_value && key_order_[field] != NO_KEY;
            if (is_key) tables_.by_key_.prefetch(hash);
            waiting.push({hash, kind, is_value, is_key});
        };
        push(hash_of_values(hashes_, kind, values,
                            [&push](std::uint64_t hash) { push(hash, false); }),
             true);
        if (values.size() / TLA_TOKEN_VALUE_BYTES > Scan_hashes::SHORT_LENGTH) {
            tables_.long_values_.add(hashes_, kind, values);
        }
    }

    void ask_for_pairs(std::uint64_t offset) {
        static_cast<void>(
            each_value(offset, [this](std::size_t field, std::span<const std::byte> values) {
                if (key_order_[field] == NO_KEY) return;
                const std::uint64_t hash = hash_of_values(hashes_, records_.kinds()[field], values);
                tables_.has_pairs_[tables_.by_key_.bucket_of(hash)] = true;
            }));
    }

    void note(const Noted& noted) {
        if (!noted.is_value) return tables_.values_.add_beginning(noted.hash);
        if (!tables_.values_.ask(noted.hash).is_value) {
            tables_.values_.add_value(noted.hash);
            ++tables_.different_[static_cast<std::size_t>(noted.kind)];
        }
        if (noted.is_key) tables_.by_key_.count(noted.hash);
    }

    template <typename Take>
    void each_offset(Take take) {
        if (!offsets_) return records_.each_record(take);
        for (const std::uint64_t offset : *offsets_) {
            static_cast<void>(take(offset));
        }
    }

    // Fields without token values never occur, nor do those of a type that nobody knows.
    template <typename Take>
    std::uint64_t each_value(std::uint64_t offset, Take take) {
        return records_.each_field(
            offset, [&](std::size_t field, std::span<const std::byte> values) {
                if (values.empty() || records_.kinds()[field] == Value_kind::none) return;
                take(field, values);
            });
    }

    // Of the record that was gathered: the hash of each pair.
    template <typename Take>
    void each_pair(Take take) {
        if (!has_shared_key_) return;
        for (const Field_value& key : values_) {
            if (!key.is_shared_key) continue;
            for (const Field_value& other : values_) {
                if (is_pair(key, other)) take(hashes_.paired(key.hash, other.hash));
            }
        }
    }

    // A value of the record that was gathered, each once: it may have the same in a hundred
    // thousand fields.
    struct Field_value {
        std::uint64_t hash;
        std::uint32_t times;     // that the record has it
        std::uint32_t key_times; // in key fields
        bool is_shared_key;      // of which there are pairs
    };

    // Where both are keys' values that many records share, the pair is the same both ways.
    [[nodiscard]] static bool is_pair(const Field_value& key, const Field_value& other) {
        if (other.hash == key.hash) return other.times > 1;
        return !other.is_shared_key || key.hash < other.hash;
    }

    void gather(std::uint64_t offset) {
        values_.clear();
        has_shared_key_ = false;
        next_ = each_value(offset, [&](std::size_t field, std::span<const std::byte> values) {
            const std::uint64_t hash = hash_of_values(hashes_, records_.kinds()[field], values);
            const bool is_key = key_order_[field] != NO_KEY;
            const bool is_shared = is_key && tables_.has_pairs_[tables_.by_key_.bucket_of(hash)];
            has_shared_key_ |= is_shared;
            values_.push_back({hash, 1, is_key ? 1U : 0U, is_shared});
        });
        if (has_shared_key_) merge_values();
    }

    // Of few values it is quicker to compare each with all.
    void merge_values() {
        constexpr std::size_t FEW = 8;
        const bool are_few = values_.size() <= FEW;
        if (!are_few) std::ranges::sort(values_, {}, &Field_value::hash);
        std::size_t kept = 0;
        for (const Field_value value : values_) {
            std::size_t same = kept == 0 || are_few ? 0 : kept - 1;
            while (same < kept && values_[same].hash != value.hash) {
                ++same;
            }
            if (same == kept) {
                values_[kept++] = value;
            } else {
                values_[same].times += value.times;
                values_[same].key_times += value.key_times;
                values_[same].is_shared_key |= value.is_shared_key;
            }
        }
        values_.resize(kept);
    }

    Scan_tables& tables_;
    const Data_set_records& records_;
    const Key_order& key_order_;
    const Scan_hashes& hashes_;
    std::optional<std::span<const std::uint64_t>> offsets_;
    std::vector<Field_value> values_;
    bool has_shared_key_ = false;
    std::uint64_t next_ = 0;
};

Scan_tables::Scan_tables(const Data_set_records& records, const Key_order& key_order,
                         const Scan_hashes& hashes, std::uint64_t most_bytes,
                         std::optional<std::span<const std::uint64_t>> offsets)
    : values_(offsets ? offsets->size() * SEQUENCES_A_RECORD : records.totals().sequences),
      by_key_(offsets ? offsets->size() : records.totals().key_values, records.size()) {
    // Four passes: values and counts; layout; keys, counting pairs; pairs. Each fills what the one
    // before has counted.
    Maker maker(*this, records, key_order, hashes, offsets);
    maker.note_values();
    const std::uint64_t shared = maker.lay_out_keys();
    const Value_totals& totals = records.totals();
    if (shared != 0) {
        const std::uint64_t others = totals.pairs / totals.key_values + 1;
        by_pair_.emplace(std::min(shared * others, totals.pairs), records.size());
    }
    const bool pairs_fit = maker.put_keys(most_bytes);
    if (by_pair_ && pairs_fit) {
        maker.put_pairs();
    } else {
        by_pair_.reset();
    }
}

const Record_table* Scan_tables::by_pair(std::uint64_t key_value) const {
    return by_pair_ && has_pairs_[by_key_.bucket_of(key_value)] ? &*by_pair_ : nullptr;
}

} // namespace tla
