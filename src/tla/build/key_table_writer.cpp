#include "tla/build/key_table_writer.hpp"

#include "records/tla_status_codes.hpp"

namespace tla {

Key_table_writer::Key_table_writer(Record_comparer& comparer, const Offset_tagger& tagger,
                                   std::uint64_t header_end, scl::Scl_ostream& out,
                                   scl::Scl_status& status)
    : comparer_(comparer), tagger_(tagger), header_end_(header_end), out_(out), status_(status) {}

void Key_table_writer::take(std::span<const Index_pair> pairs) {
    for (const Index_pair& pair : pairs) {
        if (status_.has_failed()) return;
        if (repeats_last(pair)) {
            status_.push(TLA_STATUS_DUPLICATE_LEFT_OUT);
        } else {
            write(pair);
        }
    }
}

bool Key_table_writer::repeats_last(const Index_pair& pair) {
    if (!any_ || pair.key_hash != last_.key_hash) return false;
    if (!tagger_.same_tag(pair.record_offset, last_.record_offset)) return false;
    return comparer_.equal(tagger_.offset(last_.record_offset) - header_end_,
                           tagger_.offset(pair.record_offset) - header_end_, status_);
}

void Key_table_writer::write(const Index_pair& pair) {
    out_.write_le(pair.key_hash, status_);
    out_.write_le(tagger_.offset(pair.record_offset), status_);
    last_ = pair;
    any_ = true;
}

} // namespace tla
