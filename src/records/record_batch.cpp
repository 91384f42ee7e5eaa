#include "records/record_batch.hpp"

#include <algorithm>

namespace tla {

namespace {

constexpr std::byte LINE_FEED{'\n'};

// How many bytes there are up to the last line end; 0 without one.
std::size_t whole_lines(std::span<const std::byte> bytes) {
    const auto last = std::find(bytes.rbegin(), bytes.rend(), LINE_FEED);
    return static_cast<std::size_t>(bytes.rend() - last);
}

void append(scl::Scl_heap_buffer& buffer, std::span<const std::byte> bytes,
            scl::Scl_status& status) {
    buffer.write_at(buffer.contents().size(), bytes, status);
}

} // namespace

void Record_batch::fill(scl::Scl_buffered_istream& in, scl::Scl_status& status) {
    lines_.cut(0);
    const std::uint64_t size = in.size(status);
    while (in.tell() != size && !status.has_failed()) {
        const std::span<const std::byte> window = in.window(status);
        const bool is_full = lines_.contents().size() + window.size() >= BYTES;
        const std::size_t lines = is_full ? whole_lines(window) : 0;
        const std::span<const std::byte> taken = lines != 0 ? window.first(lines) : window;
        append(lines_, taken, status);
        in.skip(taken.size());
        if (lines != 0) return;
        // The file became shorter while it was read.
        if (window.empty() && !status.has_failed()) status.push(scl::SCL_STATUS_END_OF_DATA);
    }
    if (status.has_failed()) lines_.cut(whole_lines(lines_.contents())); // half a line is no fault
}

void Record_batch::process() {
    records_.cut(0);
    out_.init(records_, status_, scl::Scl_eol::none);
    result_ = Tla_record_reader(processor_, out_).read_records(lines_.contents(), status_);
    out_.detach(status_);
}

Tla_read_result Record_batch::deliver(scl::Scl_ostream& out, scl::Scl_status& status) const {
    if (status_.has_failed()) {
        status.push_top(status_);
    } else if (result_ == Tla_read_result::finished) {
        const std::span<const std::byte> records = records_.contents();
        out.write(records.size(), records.data(), status);
    }
    return result_;
}

} // namespace tla
