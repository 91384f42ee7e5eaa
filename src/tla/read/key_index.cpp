#include "tla/read/key_index.hpp"

#include "scl/text/scl_string.hpp"
#include "tla/format/data_set_layout.hpp"

#include <algorithm>

namespace tla {

namespace {

std::u16string read_name(scl::Scl_buffered_istream& in, const scl::Scl_status& status) {
    std::string name;
    for (char byte = TLA_NAME_END;;) {
        byte = static_cast<char>(in.read_char());
        if (byte == TLA_NAME_END || status.has_failed()) break;
        name += byte;
    }
    std::u16string wide;
    scl::scl_stow(name, wide);
    return wide;
}

} // namespace

Key_index read_key_index(scl::Scl_buffered_istream& in, std::uint32_t record_count,
                         std::uint32_t block_size, scl::Scl_status& status) {
    Key_index index;
    index.name = read_name(in, status);
    in.set_position(tla_aligned(in.tell()));
    for (std::uint32_t remaining = record_count; remaining != 0 && !status.has_failed();) {
        Index_sample sample{0, in.tell()};
        in.read_le(sample.first_hash, status);
        if (status.has_failed()) break;
        index.samples.push_back(sample);
        const std::uint32_t block = std::min(remaining, block_size);
        in.set_position(sample.offset + block * TLA_INDEX_PAIR_BYTES);
        remaining -= block;
    }
    index.samples.shrink_to_fit();
    index.orders.resize(index.samples.size());
    return index;
}

} // namespace tla
