#include "report.hpp"

#include "field_search.hpp"
#include "scl/text/scl_unicode.hpp"
#include "text_file.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <utility>

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

    // Records are read twice, to ask and to tell: there may be any number of them.
    bool run(std::size_t least) {
        for (const Candidate& candidate : found_.candidates) {
            ask(candidate);
        }
        for (auto& [id, search] : searches_) {
            search.answer();
        }
        bool any = false;
        for (const Candidate& candidate : found_.candidates) {
            any = tell(candidate, least) || any;
        }
        return any;
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

    bool tell(const Candidate& candidate, std::size_t least) {
        const auto entry = data_set_.read(candidate.record_offset);
        std::size_t count = 0;
        std::string names;
        for (std::size_t field = 0; field < data_set_.fields().size(); ++field) {
            if (field != key_field(candidate) && !occurs(*entry, field)) continue;
            ++count;
            names += ' ' + shown(data_set_.fields()[field].name);
        }
        if (count < least) return false;
        print_line(candidate, count, names);
        return true;
    }

    bool occurs(const tla::Tla_data_set_entry_file& entry, std::size_t field) {
        const auto search = searches_.find(id_of(data_set_.fields()[field].type));
        return search != searches_.end() && entry.values_of(field, values_) &&
               search->second.occurs(values_);
    }

    void print_line(const Candidate& candidate, std::size_t count, const std::string& names) {
        const Key_hit& hit = found_.hits[candidate.hit];
        const std::u16string_view text = forms_.original;
        const auto passed = text.substr(line_place_, hit.place - line_place_);
        line_ += static_cast<std::size_t>(std::ranges::count(passed, u'\n'));
        line_place_ = hit.place;
        print(name_ + ':' + std::to_string(line_) + ": " +
              shown(data_set_.fields()[key_field(candidate)].name) + " \"" +
              quoted(text.substr(hit.place, hit.end - hit.place)) + "\", " + std::to_string(count) +
              " of " + std::to_string(data_set_.fields().size()) + " fields:" + names +
              " (record " + std::to_string(candidate.record_offset) + ")\n");
    }

    Data_set& data_set_;
    std::string name_;
    const Text_forms& forms_;
    Key_hits found_;
    std::map<Id, Field_search> searches_;
    std::vector<std::uint64_t> values_;
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
