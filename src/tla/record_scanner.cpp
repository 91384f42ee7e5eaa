#include "tla/record_scanner.hpp"

#include "tla/data_set_layout.hpp"

namespace tla {

void Record_scanner::skip_values(std::uint16_t count, scl::Scl_status& status) {
    const auto bytes = static_cast<std::int64_t>(count * TOKEN_VALUE_BYTES);
    in_.seek(scl::Scl_seek::relative, bytes, status);
}

std::span<const std::byte> Record_scanner::read_values(std::uint16_t count,
                                                       scl::Scl_status& status) {
    const std::size_t bytes = count * TOKEN_VALUE_BYTES;
    if (bytes > scl::Scl_buffered_istream::WINDOW_BYTES) return read_into_spare(bytes, status);
    const std::span<const std::byte> window = in_.window(bytes, status);
    if (window.size() < bytes) {
        in_.skip(window.size());
        if (!status.has_failed()) status.push(scl::SCL_STATUS_END_OF_DATA);
        return {};
    }
    in_.skip(bytes);
    return window.first(bytes);
}

std::span<const std::byte> Record_scanner::read_into_spare(std::size_t bytes,
                                                           scl::Scl_status& status) {
    spare_.resize(bytes);
    return std::span(spare_).first(in_.read(bytes, spare_.data(), status));
}

} // namespace tla
