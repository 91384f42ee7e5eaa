#pragma once

#include "tla/scan/index_state.hpp"
#include "tla/scan/occurrence_window.hpp"
#include "tla/scan/reported_records.hpp"
#include "tla/scan/tla_text_scan.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tla {

// A record that is to be reported at a place of a text.
struct Found_record {
    std::uint64_t offset; // of the record, in bytes from the first one
    std::size_t key_order;
    std::uint64_t end;  // of the occurrence
    std::uint64_t line; // and what else is to be told of it
    std::vector<std::size_t> fields;
};

// Says which records are to be reported at an occurrence of a key's value: those of which enough
// fields occur within reach, each once for a text.
class Record_judge {
public:
    Record_judge(const Index_state& index, std::size_t least, std::optional<std::uint64_t> within);

    // For the next text. The tables must last as long as that.
    void start(const Scan_tables& tables);

    // Whether the value is a key's of some record, which is seldom wrong.
    [[nodiscard]] bool may_be_key(const Occurrence& occurrence) const;
    // Whether all records of the value are reported, so that it is of no interest as a key any
    // more.
    [[nodiscard]] bool is_done(std::uint64_t hash) const {
        return !done_.empty() && done_.contains(hash);
    }
    // The words within reach of an occurrence.
    [[nodiscard]] Word_range reach_of(const Occurrence& occurrence) const;

    // Adds the records to be reported at the occurrence of that number, if no other one stands at
    // the same place. All occurrences within its reach are in the window.
    void judge(std::uint64_t number, const Occurrence_window& window,
               std::vector<Found_record>& found);
    void mark_reported(std::uint64_t offset) { reported_.add(index_.records->number_of(offset)); }
    [[nodiscard]] bool is_reported(std::uint64_t offset) const {
        return reported_.holds(index_.records->number_of(offset));
    }

private:
    void choose_kinds();
    void judge_all(const Occurrence& key, const Occurrence_window& window,
                   std::vector<Found_record>& found);
    void judge_pairs(const Occurrence_window::Entry& key, const Pairs_of_bucket& pairs,
                     const Occurrence_window& window, std::vector<Found_record>& found);
    void judge_beside(const Occurrence& key, const Occurrence& other, const Pairs_of_bucket& pairs,
                      const Occurrence_window& window, std::vector<Found_record>& found);
    [[nodiscard]] bool judge_pair(std::uint64_t pair, const Occurrence& key,
                                  const Pairs_of_bucket& pairs, const Occurrence_window& window,
                                  std::vector<Found_record>& found);
    struct Numbers { // in a window; begin may be behind end
        std::uint64_t begin;
        std::uint64_t end;
    };
    [[nodiscard]] Numbers unchecked(const Occurrence& key, const Occurrence_window& window);
    bool judge_record(std::uint64_t offset, const Occurrence& key, const Occurrence_window& window,
                      std::vector<Found_record>& found);

    const Index_state& index_;
    const Scan_tables* tables_ = nullptr;
    std::size_t least_;
    std::optional<std::uint64_t> within_;
    std::array<bool, VALUE_KINDS> is_key_kind_{};
    // By the key's kind: which kinds of other fields one has to ask for, as at least one of theirs
    // occurs wherever enough fields do.
    std::array<std::array<bool, VALUE_KINDS>, VALUE_KINDS> asked_kinds_{};
    Reported_records reported_;
    // Nothing is asked twice: values of keys of which all records are reported; where one other
    // field is enough, those with each other value; and for a key's value how far the
    // window was gone through.
    std::unordered_set<std::uint64_t> done_;
    std::unordered_map<std::uint64_t, std::uint64_t> checked_;
    std::vector<std::size_t> fields_; // of the record that is judged
};

} // namespace tla
