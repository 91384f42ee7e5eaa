#pragma once

#include "scl/status/scl_status_codes.hpp"

#pragma GCC visibility push(default) // installed

namespace tla {

// Codes of data sets; their texts stand in util_status.msg.
inline constexpr scl::Scl_status_code TLA_STATUS_FIELD_LIST = 0xC2012510;
inline constexpr scl::Scl_status_code TLA_STATUS_KEY_NAME = 0xC2012511;
inline constexpr scl::Scl_status_code TLA_STATUS_DUPLICATE_LEFT_OUT = 0x82012512;
inline constexpr scl::Scl_status_code TLA_STATUS_VALUE_COUNT = 0xC2012513;
inline constexpr scl::Scl_status_code TLA_STATUS_TOO_MANY_PAIRS = 0xC2012514;
inline constexpr scl::Scl_status_code TLA_STATUS_NOT_OPEN = 0xC2012515;
inline constexpr scl::Scl_status_code TLA_STATUS_CHECKSUM = 0xC201251A;
inline constexpr scl::Scl_status_code TLA_STATUS_NO_DATA_SET = 0xC2012521;
inline constexpr scl::Scl_status_code TLA_STATUS_VERSION = 0xC2012522;
inline constexpr scl::Scl_status_code TLA_STATUS_RECORD_END = 0xC2012525;
inline constexpr scl::Scl_status_code TLA_STATUS_NO_TEXT = 0xC2012526;
inline constexpr scl::Scl_status_code TLA_STATUS_NO_TOKENS = 0xC2012527;
inline constexpr scl::Scl_status_code TLA_STATUS_EMPTY_KEY = 0xC2012528;
inline constexpr scl::Scl_status_code TLA_STATUS_RECORDS_LOST = 0x8201252A;
inline constexpr scl::Scl_status_code TLA_STATUS_COUNT_WRAPPED = 0x8201252B;

} // namespace tla

#pragma GCC visibility pop
