#include "tla/format/field_list.hpp"

#include "records/values/tla_formatters.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/format/data_set_layout.hpp"

#include <algorithm>
#include <numeric>

namespace tla {

namespace {

// What a byte of a list can be.
enum class Step { part_of_name, end_of_name, end_of_field, end_of_list, malformed };

// What each byte of a list is: its meaning depends on what came before it.
class Field_list_form {
public:
    [[nodiscard]] Step take(char byte) {
        // Also when one came before in the same field: the last one counts.
        if (byte == TLA_FIELD_NAME_END) {
            name_pending_ = true;
            return Step::end_of_name;
        }
        if (byte != TLA_NAME_END) {
            after_field_ = false;
            return Step::part_of_name;
        }
        // A zero where a name would begin: so the list ends, unless it would have no field at all.
        if (after_field_) return Step::end_of_list;
        if (!name_pending_) return Step::malformed;
        name_pending_ = false;
        after_field_ = true;
        return Step::end_of_field;
    }

private:
    bool name_pending_ = false; // the name is there, its type's name not yet
    bool after_field_ = false;  // nothing has come since the last field
};

// Hands each byte and what it is to `take`, up to the end of the list, well or badly.
template <typename Take>
void walk_list(scl::Scl_buffered_istream& in, scl::Scl_status& status, const Take& take) {
    Field_list_form form;
    for (;;) {
        const char byte = static_cast<char>(in.read_char());
        if (status.has_failed()) return;
        const Step step = form.take(byte);
        if (step == Step::malformed) status = TLA_STATUS_FIELD_LIST;
        if (step == Step::malformed || step == Step::end_of_list) return;
        take(byte, step);
    }
}

} // namespace

std::size_t tla_count_fields(scl::Scl_buffered_istream& in, scl::Scl_status& status) {
    std::size_t count = 0;
    walk_list(in, status, [&count](char, Step step) {
        if (step == Step::end_of_field) ++count;
    });
    return count;
}

// Of several separators in a field the last one counts, and what stood before it is dropped.
void tla_read_field_list(scl::Scl_buffered_istream& in, std::size_t count,
                         std::vector<Field_descriptor>& fields, scl::Scl_status& status) {
    fields.reserve(fields.size() + count);
    std::string gathered;
    std::u16string name;
    walk_list(in, status, [&](char byte, Step step) {
        if (step == Step::part_of_name) {
            gathered += byte;
            return;
        }
        if (step == Step::end_of_name) {
            // Bytes that are no UTF-8 stay what they are: a name is found again as it was written.
            scl::scl_stow(gathered, name);
        } else {
            fields.push_back({name, tla_formatter_type_id_from_name(gathered)});
        }
        gathered.clear();
    });
}

std::string tla_field_list_of(std::span<const Field_descriptor> fields) {
    std::string list;
    for (const Field_descriptor& field : fields) {
        scl::scl_string_append(list, field.name);
        list += TLA_FIELD_NAME_END;
        // Empty for a type that nobody knows: the field can be read again, its values cannot be
        // made.
        list += tla_formatter_name_from_type_id(field.type);
        list += TLA_NAME_END;
    }
    list += TLA_FIELD_LIST_END;
    return list;
}

std::vector<std::uint32_t> tla_order_by_name(std::span<const Field_descriptor> fields) {
    std::vector<std::uint32_t> order(fields.size());
    std::iota(order.begin(), order.end(), std::uint32_t{0});
    std::ranges::sort(order, [fields](std::uint32_t a, std::uint32_t b) {
        const int names = fields[a].name.compare(fields[b].name);
        return names != 0 ? names < 0 : a < b;
    });
    return order;
}

bool tla_names_are_unique(std::span<const Field_descriptor> fields) {
    const std::vector<std::uint32_t> order = tla_order_by_name(fields);
    // Neighbours in the order by name: n log n instead of a comparison of every two.
    const auto same = [fields](std::uint32_t a, std::uint32_t b) {
        return fields[a].name == fields[b].name;
    };
    return std::ranges::adjacent_find(order, same) == order.end();
}

} // namespace tla
