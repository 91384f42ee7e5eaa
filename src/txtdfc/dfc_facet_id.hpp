#pragma once

#include <array>
#include <cstdint>
#include <set>

namespace dfc {

// Names a facet: 16 bytes in GUID layout, ordered as bytes.
using Dfc_facet_id = std::array<std::uint8_t, 16>;
using Dfc_facet_set = std::set<Dfc_facet_id>;

} // namespace dfc
