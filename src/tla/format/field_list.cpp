#include "tla/format/field_list.hpp"

#include "records/values/tla_formatters.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/format/data_set_layout.hpp"

#include <algorithm>
#include <string_view>
#include <unordered_set>

namespace tla {

namespace {

// Takes the list byte by byte: a byte's meaning depends on what came before it, and a list may be
// longer than a window of the stream.
class Field_list_parser {
public:
    explicit Field_list_parser(std::vector<Field_descriptor>& fields) : fields_(fields) {}

    // False for the byte that ends the list, well or badly.
    [[nodiscard]] bool take(char byte, scl::Scl_status& status) {
        if (byte == TLA_FIELD_NAME_END) {
            end_name();
        } else if (byte != TLA_NAME_END) {
            gathered_ += byte;
            after_field_ = false;
        } else if (after_field_) {
            return false;
        } else if (name_pending_) {
            end_field();
        } else {
            status = TLA_STATUS_FIELD_LIST;
            return false;
        }
        return true;
    }

private:
    // Of several separators in a field the last one counts, and what stood before it is dropped.
    void end_name() {
        scl::scl_stow(gathered_, name_);
        gathered_.clear();
        name_pending_ = true;
    }

    void end_field() {
        fields_.push_back({name_, tla_formatter_type_id_from_name(gathered_)});
        gathered_.clear();
        name_pending_ = false;
        after_field_ = true;
    }

    std::vector<Field_descriptor>& fields_;
    std::string gathered_;
    std::u16string name_;
    bool name_pending_ = false; // the name is there, its type's name not yet
    bool after_field_ = false;  // nothing has come since the last field
};

} // namespace

void tla_read_field_list(scl::Scl_buffered_istream& in, std::vector<Field_descriptor>& fields,
                         scl::Scl_status& status) {
    Field_list_parser parser(fields);
    bool goes_on = true;
    while (goes_on) {
        const char byte = static_cast<char>(in.read_char());
        goes_on = !status.has_failed() && parser.take(byte, status);
    }
}

std::string tla_field_list_of(std::span<const Field_descriptor> fields) {
    std::string list;
    for (const Field_descriptor& field : fields) {
        scl::scl_string_append(list, field.name);
        list += TLA_FIELD_NAME_END;
        list += tla_formatter_name_from_type_id(field.type);
        list += TLA_NAME_END;
    }
    list += TLA_FIELD_LIST_END;
    return list;
}

// With a set: a crafted file may have millions of fields.
bool tla_names_are_unique(std::span<const Field_descriptor> fields) {
    std::unordered_set<std::u16string_view> names;
    return std::ranges::all_of(fields, [&names](const Field_descriptor& field) {
        return names.insert(field.name).second;
    });
}

} // namespace tla
