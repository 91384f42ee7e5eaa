#include "tla/scan/scan_hashes.hpp"

#include <exception>
#include <new>
#include <random>

namespace tla {

Value_kind value_kind_of(const Formatter_type_id& type) {
    if (type == Tla_simple_formatter::TYPE_ID) return Value_kind::simple;
    if (type == Tla_simplenc_formatter::TYPE_ID) return Value_kind::lower;
    if (type == Tla_ccnum_formatter::TYPE_ID) return Value_kind::number;
    return Value_kind::none;
}

// Without random numbers there is no scan: with known ones a text could be made that takes hours.
Scan_hashes Scan_hashes::draw() try {
    std::random_device random;
    const auto next = [&random] { return std::uint64_t{random()} << 32U | random(); };
    Scan_hashes hashes;
    for (std::uint64_t& start : hashes.starts_) {
        start = next();
    }
    hashes.left_ = next();
    hashes.right_ = next();
    hashes.pair_left_ = next();
    hashes.pair_right_ = next();
    hashes.base_ = reduced(next());
    return hashes;
} catch (const std::exception&) {
    throw std::bad_alloc();
}

} // namespace tla
