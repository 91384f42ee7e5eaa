#include "tla/read/entries/entry_source.hpp"

#include "tla/format/field_list.hpp"

#include <algorithm>
#include <limits>

namespace tla {

namespace {

// Up to so many names, going through them takes no longer than a search.
constexpr std::size_t FEW_FIELDS = 32;

} // namespace

std::size_t Entry_fields::find(std::u16string_view name) const {
    const std::vector<Field_descriptor>& fields = *list_;
    if (by_name_.empty()) {
        const auto found = std::ranges::find(fields, name, &Field_descriptor::name);
        return static_cast<std::size_t>(found - fields.begin());
    }
    const auto name_of = [&fields](std::uint32_t field) -> std::u16string_view {
        return fields[field].name;
    };
    const auto found = std::ranges::lower_bound(by_name_, name, {}, name_of);
    return found != by_name_.end() && name_of(*found) == name ? *found : fields.size();
}

// Not for few names, and not for more than an index of 32 bits can count.
void Entry_fields::index_names() {
    const bool is_long =
        list_->size() > FEW_FIELDS && list_->size() <= std::numeric_limits<std::uint32_t>::max();
    by_name_ = is_long ? tla_order_by_name(*list_) : std::vector<std::uint32_t>();
}

// Swapped, not copied: it runs in a destructor, where nothing may throw.
void Entry_fields::keep(std::vector<Field_descriptor>& list) noexcept {
    kept_.swap(list);
    list_ = &kept_;
}

} // namespace tla
