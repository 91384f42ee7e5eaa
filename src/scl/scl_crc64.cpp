#include "scl/scl_crc64.hpp"

#include "scl/scl_buffered_istream.hpp"
#include "scl/scl_crc64_kernels.hpp"

namespace scl {

namespace {

using Kernel = std::uint64_t (*)(std::uint64_t, std::span<const std::byte>);

const Kernel STEP =
    impl::scl_has_carryless_multiply() ? impl::scl_crc64_by_multiply : impl::scl_crc64_by_table;

} // namespace

std::uint64_t Scl_crc64::calculate(const void* data, std::size_t size, std::uint64_t initial) {
    return ~STEP(initial, {static_cast<const std::byte*>(data), size});
}

void Scl_crc64::update(std::span<const std::byte> bytes) {
    register_ = STEP(register_, bytes);
}

void Scl_crc64::update(const Scl_buffer& buffer, Scl_status& status) {
    Scl_buffered_istream in(buffer, false, status, Scl_eol::none);
    const std::uint64_t size = in.size(status);
    while (in.tell() != size && !status.has_failed()) {
        const std::span<const std::byte> bytes = in.window(status);
        update(bytes);
        in.skip(bytes.size());
        if (bytes.empty() && !status.has_failed()) status.push(SCL_STATUS_END_OF_DATA);
    }
}

} // namespace scl
