#include "tla/scan/scan_tables.hpp"

#include "tla/scan/pair_maker.hpp"

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

    // Where all records' entries go is known now.
    void put_keys() {
        Record_table& keys = tables_.by_key_;
        const auto prepare = [&keys](const Entry& e) { keys.prefetch_entry(e.hash); };
        const auto put = [&keys](const Entry& e) { keys.put(e.hash, e.offset); };
        Delayed<Entry, decltype(prepare), decltype(put)> entries(prepare, put);
        each_offset([&](std::uint64_t offset) {
            return each_key_value(offset, [&](std::uint64_t hash) {
                keys.prefetch(hash);
                entries.push({hash, offset});
            });
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
        static_cast<void>(each_key_value(offset, [this](std::uint64_t hash) {
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

    // The hash of each key field's value.
    template <typename Take>
    std::uint64_t each_key_value(std::uint64_t offset, Take take) {
        return each_value(offset, [&](std::size_t field, std::span<const std::byte> values) {
            if (key_order_[field] == NO_KEY) return;
            take(hash_of_values(hashes_, records_.kinds()[field], values));
        });
    }

    Scan_tables& tables_;
    const Data_set_records& records_;
    const Key_order& key_order_;
    const Scan_hashes& hashes_;
    std::optional<std::span<const std::uint64_t>> offsets_;
};

Scan_tables::Scan_tables(const Data_set_records& records, const Key_order& key_order,
                         const Scan_hashes& hashes, std::uint64_t most_bytes,
                         std::optional<std::span<const std::uint64_t>> offsets)
    : values_(offsets ? offsets->size() * SEQUENCES_A_RECORD : records.totals().sequences),
      by_key_(offsets ? offsets->size() : records.totals().key_values, records.size()) {
    // Each pass fills what the one before has counted. Pairs come last: they are made of what the
    // keys' table holds.
    Maker maker(*this, records, key_order, hashes, offsets);
    maker.note_values();
    const std::uint64_t shared = maker.lay_out_keys();
    maker.put_keys();
    if (shared != 0) {
        by_pair_ =
            Pair_maker(records, key_order, hashes, by_key_).make(has_pairs_, shared, most_bytes);
    }
}

std::optional<Pairs_of_bucket> Scan_tables::by_pair(std::uint64_t key_value) const {
    const std::size_t bucket = by_key_.bucket_of(key_value);
    if (!by_pair_ || !has_pairs_[bucket]) return {};
    return by_pair_->pairs_of(bucket);
}

} // namespace tla
