#pragma once

#include "scl/scl_istream.hpp"

namespace scl {

// Every read goes straight to the buffer; for few, large reads at chosen offsets.
class Scl_unbuffered_istream final : public Scl_istream {
public:
    Scl_unbuffered_istream(const Scl_buffer& buffer, bool at_end, Scl_status& status,
                           Scl_eol /*eol*/) {
        attach(buffer, at_end, status);
    }

    // Reads without moving the position; 0 bytes at the end.
    std::size_t read_at(std::uint64_t offset, std::size_t count, void* destination,
                        Scl_status& status) const;

protected:
    std::size_t read_beyond_window(std::span<std::byte> bytes, Scl_status& status) override;
};

} // namespace scl
