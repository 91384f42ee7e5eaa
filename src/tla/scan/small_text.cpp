#include "tla/scan/small_text.hpp"

#include <algorithm>

namespace tla {

namespace {

// A table of its own pays for one record in sixteen, or for few at all.
constexpr std::uint64_t RECORDS_A_PICK = 16;
constexpr std::uint64_t FEW_PICKS = 1024;

// The first value that the text has not ends it, mostly the very first.
bool has_all(const Value_set& set, std::span<const std::byte> values) {
    for (std::size_t i = 0; i < values.size() / TLA_TOKEN_VALUE_BYTES; ++i) {
        if (!set.may_hold(tla_value_at(values, i))) return false;
    }
    return !values.empty();
}

} // namespace

// Looks at words alone, not at their order: the tables made of what is left find that out.
std::optional<std::vector<std::uint64_t>> records_with(const Value_set& values,
                                                       const Data_set_records& records,
                                                       const Key_order& key_order,
                                                       std::size_t least) {
    std::vector<std::uint64_t> offsets;
    const std::uint64_t most = std::max(records.count() / RECORDS_A_PICK, FEW_PICKS);
    records.each_record([&](std::uint64_t offset) {
        std::size_t fields = 0;
        bool has_key = false;
        const std::uint64_t next =
            records.each_field(offset, [&](std::size_t field, std::span<const std::byte> own) {
                if (!has_all(values, own)) return;
                ++fields;
                has_key |= key_order[field] != NO_KEY;
            });
        // One too many is enough to see that they are too many.
        if (has_key && fields >= least && offsets.size() <= most) offsets.push_back(offset);
        return next;
    });
    if (offsets.size() > most) return {};
    return offsets;
}

} // namespace tla
