#pragma once

#include <cstdint>

#pragma GCC visibility push(default) // installed

namespace scl {

// A status code's two top bits are its severity: both set is an error, the top bit alone a warning.
using Scl_status_code = std::uint32_t;

inline constexpr Scl_status_code SCL_SEVERITY_MASK = 0xC0000000;
inline constexpr Scl_status_code SCL_SEVERITY_WARNING = 0x80000000;

[[nodiscard]] constexpr bool scl_is_error(Scl_status_code code) {
    return (code & SCL_SEVERITY_MASK) == SCL_SEVERITY_MASK;
}

[[nodiscard]] constexpr bool scl_is_warning(Scl_status_code code) {
    return (code & SCL_SEVERITY_MASK) == SCL_SEVERITY_WARNING;
}

// Codes of the support services; their texts are in plat_status.msg. Those of file operations carry
// the file's name and the reason as their argument ("out: No space left on device").
inline constexpr Scl_status_code SCL_STATUS_NO_MEMORY = 0xC2000001;
inline constexpr Scl_status_code SCL_STATUS_OPEN_FAILED = 0xC2000010;
inline constexpr Scl_status_code SCL_STATUS_CREATE_FAILED = 0xC2000011;
inline constexpr Scl_status_code SCL_STATUS_EXISTS = 0xC2000012;
inline constexpr Scl_status_code SCL_STATUS_READ_FAILED = 0xC2000013;
inline constexpr Scl_status_code SCL_STATUS_WRITE_FAILED = 0xC2000014;
inline constexpr Scl_status_code SCL_STATUS_CLOSE_FAILED = 0xC2000015;
inline constexpr Scl_status_code SCL_STATUS_NOT_REGULAR = 0xC2000016;
// From a buffer: an offset beyond its end, or an operation that it does not offer. From a stream:
// less data than was asked for. When offsets and counts in the data led there, the data is at
// fault.
inline constexpr Scl_status_code SCL_STATUS_OUT_OF_BOUNDS = 0xC2000019;
inline constexpr Scl_status_code SCL_STATUS_END_OF_DATA = 0xC200002A;
// The codec turns exceptions into these; the second carries the exception's message.
inline constexpr Scl_status_code SCL_STATUS_UNKNOWN_EXCEPTION = 0xC200006A;
inline constexpr Scl_status_code SCL_STATUS_EXCEPTION = 0xC200006B;

} // namespace scl

#pragma GCC visibility pop
