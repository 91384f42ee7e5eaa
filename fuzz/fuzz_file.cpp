#include "fuzz_file.hpp"

#include "scl/crc/scl_crc64.hpp"
#include "scl/io/scl_endian.hpp"
#include "tla/format/data_set_layout.hpp"

#include <cstdlib>

#include <sys/mman.h>
#include <unistd.h>

namespace fuzz {

Fuzz_file::Fuzz_file(std::span<const std::byte> bytes)
    : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)),
      bytes_(reinterpret_cast<const char*>(bytes.data()), bytes.size()) {
    const auto sealed = std::as_writable_bytes(std::span(bytes_));
    if (sealed.size() > tla::TLA_CHECKED_FROM) {
        scl::Scl_crc64 checksum;
        checksum.update(sealed.subspan(tla::TLA_CHECKED_FROM));
        scl::scl_store_le(&sealed[tla::TLA_CHECKSUM_OFFSET], checksum.result(false));
    }
    const ssize_t written = write(descriptor_, sealed.data(), sealed.size());
    if (written != static_cast<ssize_t>(sealed.size())) std::abort();
}

Fuzz_file::~Fuzz_file() {
    close(descriptor_);
}

std::string Fuzz_file::path() const {
    return "/proc/self/fd/" + std::to_string(descriptor_);
}

} // namespace fuzz
