#include "tla/write/key_table.hpp"

#include "records/values/tla_record_scanner.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/format/data_set_layout.hpp"
#include "tla/write/header_writer.hpp"

namespace tla {

namespace {

// Writes sorted pairs and leaves out each whose record equals that of the last pair written. Only
// neighbours are compared: of equal hashes with the records A, B, A all three are written.
//
//     0          8               16
//     | key hash | record offset |      both little-endian
class Key_table_writer final : public Tla_pair_sink {
public:
    Key_table_writer(const Offset_tagger& tagger, const Recorded& recorded, scl::Scl_ostream& out,
                     scl::Scl_status& status)
        : comparer_(recorded.records, recorded.field_count, status),
          tagger_(tagger),
          header_end_(recorded.header_end),
          out_(out),
          status_(status) {}

    void take(std::span<const Index_pair> pairs) override {
        for (const Index_pair& pair : pairs) {
            const bool is_repeated = may_repeat_last(pair) && repeats_last(pair);
            if (status_.has_failed()) return;
            if (is_repeated) {
                status_.push(TLA_STATUS_DUPLICATE_LEFT_OUT);
            } else {
                write(pair);
            }
        }
    }

private:
    // Compares the hashes first: most differ, and it costs least.
    [[nodiscard]] bool may_repeat_last(const Index_pair& pair) const {
        return pair.key_hash == last_.key_hash && any_ &&
               tagger_.same_tag(pair.record_offset, last_.record_offset);
    }
    [[nodiscard]] bool repeats_last(const Index_pair& pair) {
        return comparer_.equal(tagger_.offset(last_.record_offset) - header_end_,
                               tagger_.offset(pair.record_offset) - header_end_, status_);
    }

    void write(const Index_pair& pair) {
        const std::span<std::byte> room = out_.room(TLA_INDEX_PAIR_BYTES, status_);
        if (status_.has_failed()) return;
        scl::scl_store_le(room.data(), pair.key_hash);
        scl::scl_store_le(&room[sizeof pair.key_hash], tagger_.offset(pair.record_offset));
        out_.advance(TLA_INDEX_PAIR_BYTES);
        last_ = pair;
        any_ = true;
    }

    Record_comparer comparer_; // one for all: it still has what it read near the last records
    const Offset_tagger& tagger_;
    std::uint64_t header_end_;
    scl::Scl_ostream& out_;
    scl::Scl_status& status_;
    Index_pair last_{};
    bool any_ = false; // with no pair written yet there is nothing to compare with
};

} // namespace

// One pass over the scratch file for each key but, mostly, the first.
void read_key_pairs(std::size_t key_field, const Recorded& recorded, Key_pairs& pairs,
                    scl::Scl_status& status) {
    scl::Scl_buffered_istream in(recorded.records, status);
    pairs.begin_key(key_field);
    Tla_record_scanner scanner(in, recorded.field_count);
    for (std::uint64_t i = 0; i < recorded.count; ++i) {
        const std::uint64_t offset = recorded.header_end + in.tell();
        const std::span<const std::byte> record = scanner.next(status);
        if (status.has_failed()) break;
        pairs.add(record, offset);
    }
}

//     | key name | 0x00 | zeros up to a multiple of 8 | pairs
//
// A reader finds a table by its name, so that the tables may stand in any order. Pairs are aligned
// so that a reader can load each number in one step.
void write_key_name(std::u16string_view key_name, scl::Scl_ostream& out, scl::Scl_status& status) {
    std::string name;
    scl::scl_string_append(name, key_name);
    name += TLA_NAME_END;
    out.write(name, status);
    tla_pad_to_eight(out, status);
}

// Draining sorts: pairs come out in the order of their hashes, then of their offsets.
void write_key_pairs(Key_pairs& pairs, const Recorded& recorded, scl::Scl_ostream& out,
                     scl::Scl_status& status) {
    Key_table_writer writer(pairs.tagger(), recorded, out, status);
    pairs.drain(writer);
}

} // namespace tla
