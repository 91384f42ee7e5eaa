#include "report.hpp"

#include "field_search.hpp"
#include "scl/text/scl_unicode.hpp"
#include "text_file.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <span>
#include <utility>
#include <vector>

namespace scan {

namespace {

using Id = std::pair<std::uint64_t, std::uint64_t>;

Id id_of(const tla::Formatter_type_id& type) {
    return {type.high, type.low};
}

// What stands in the text, on one line.
std::string quoted(std::u16string_view text) {
    std::u16string result;
    for (const char16_t unit : text) {
        if (!scl::scl_is_white_space(unit)) {
            result += unit;
        } else if (!result.ends_with(u' ')) {
            result += u' ';
        }
    }
    return shown(result);
}

void print(const std::string& line) {
    if (std::fwrite(line.data(), 1, line.size(), stdout) != line.size()) finish_output();
}

class Report {
public:
    Report(Data_set& data_set, const std::string& name, const Text_forms& forms)
        : data_set_(data_set),
          name_(shown(name)),
          forms_(forms),
          found_(search_keys(data_set, forms)) {}

    // Records are read again and not kept, as there may be any number of them; in the order of the
    // file until few are left.
    bool run(std::size_t least) {
        for (const Candidate& candidate : found_.candidates) {
            ask(candidate);
        }
        for (auto& [id, search] : searches_) {
            search.answer();
        }
        std::erase_if(found_.candidates, [this, least](const Candidate& candidate) {
            return occurring_fields(candidate).size() < least;
        });
        std::ranges::sort(found_.candidates, {}, [this](const Candidate& candidate) {
            return std::pair(found_.hits[candidate.hit].place, candidate.record_offset);
        });
        for (const Candidate& candidate : found_.candidates) {
            print_line(candidate);
        }
        return !found_.candidates.empty();
    }

private:
    [[nodiscard]] std::size_t key_field(const Candidate& candidate) const {
        return data_set_.keys()[found_.hits[candidate.hit].key].field;
    }

    void ask(const Candidate& candidate) {
        const auto entry = data_set_.read(candidate.record_offset);
        for (std::size_t field = 0; field < data_set_.fields().size(); ++field) {
            if (field == key_field(candidate) || !entry->values_of(field, values_)) continue;
            const tla::Formatter_type_id& type = data_set_.fields()[field].type;
            if (tla::tla_formatter_name_from_type_id(type).empty()) continue;
            searches_.try_emplace(id_of(type), forms_, type).first->second.ask(values_);
        }
    }

    // Replaced by the next call.
    std::span<const std::size_t> occurring_fields(const Candidate& candidate) {
        const auto entry = data_set_.read(candidate.record_offset);
        occurring_.clear();
        for (std::size_t field = 0; field < data_set_.fields().size(); ++field) {
            const bool is_key = field == key_field(candidate);
            if (is_key || occurs(*entry, field)) occurring_.push_back(field);
        }
        return occurring_;
    }

    bool occurs(const tla::Tla_data_set_entry_file& entry, std::size_t field) {
        const auto search = searches_.find(id_of(data_set_.fields()[field].type));
        return search != searches_.end() && entry.values_of(field, values_) &&
               search->second.occurs(values_);
    }

    void print_line(const Candidate& candidate) {
        const auto& fields = data_set_.fields();
        const Key_hit& hit = found_.hits[candidate.hit];
        const std::string quote = quoted(forms_.original.substr(hit.place, hit.end - hit.place));
        std::string line = name_ + ':' + std::to_string(line_of(hit.place)) + ": " +
                           shown(fields[key_field(candidate)].name) + " \"" + quote + "\", ";
        const std::span<const std::size_t> occurring = occurring_fields(candidate);
        line +=
            std::to_string(occurring.size()) + " of " + std::to_string(fields.size()) + " fields:";
        for (const std::size_t field : occurring) {
            line += ' ' + shown(fields[field].name);
        }
        print(line + " (record " + std::to_string(candidate.record_offset) + ")\n");
    }

    // Places ascend from call to call.
    std::size_t line_of(std::size_t place) {
        const auto passed = forms_.original.substr(line_place_, place - line_place_);
        line_ += static_cast<std::size_t>(std::ranges::count(passed, u'\n'));
        line_place_ = place;
        return line_;
    }

    Data_set& data_set_;
    std::string name_;
    const Text_forms& forms_;
    Key_hits found_;
    std::map<Id, Field_search> searches_;
    std::vector<std::uint64_t> values_;
    std::vector<std::size_t> occurring_;
    std::size_t line_ = 1;
    std::size_t line_place_ = 0;
};

} // namespace

bool report_text(Data_set& data_set, const std::string& name, std::u16string_view text,
                 std::size_t least) {
    const Text_forms forms(text, data_set.fields());
    if (least > data_set.fields().size()) return false;
    return Report(data_set, name, forms).run(least);
}

void finish_output() {
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        throw Output_fault("standard output: " + std::string(std::strerror(errno)));
    }
}

} // namespace scan
