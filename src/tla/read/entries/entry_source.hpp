#pragma once

#include "records/values/field_descriptor.hpp"
#include "scl/io/scl_buffer.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace tla {

// The fields by whose names entries answer. A connector shows its callers its own list, which must
// stay in its place; so the entries look at that list as well, until the connector gives it up.
class Entry_fields {
public:
    // The list must outlive this, or be kept.
    explicit Entry_fields(const std::vector<Field_descriptor>& list) : list_(&list) {}
    Entry_fields(const Entry_fields&) = delete;
    Entry_fields& operator=(const Entry_fields&) = delete;
    ~Entry_fields() = default;

    [[nodiscard]] const std::vector<Field_descriptor>& list() const { return *list_; }
    // The index of the first field of that name; the number of fields when there is none.
    [[nodiscard]] std::size_t find(std::u16string_view name) const;

    // Call it when the list has grown. A long list is searched by name from then on.
    void index_names();
    // Takes the list's fields over, and leaves it empty.
    void keep(std::vector<Field_descriptor>& list) noexcept;

private:
    const std::vector<Field_descriptor>* list_;
    std::vector<Field_descriptor> kept_;
    std::vector<std::uint32_t> by_name_; // indexes, ordered by name; empty for a short list
};

// Shared by a connector and its entries, so that an entry still answers when the connector has
// closed the file or is gone.
struct Entry_source {
    Entry_source(std::shared_ptr<const scl::Scl_buffer> opened,
                 std::shared_ptr<const Entry_fields> names)
        : file(std::move(opened)), fields(std::move(names)) {}

    std::shared_ptr<const scl::Scl_buffer> file; // connectors of other threads may share it
    std::shared_ptr<const Entry_fields> fields;
};

} // namespace tla
