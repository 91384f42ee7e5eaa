#include "scl/text/scl_utf.hpp"
#include "tla/scan/scan_engine.hpp"

#include <algorithm>
#include <tuple>

// What becomes of the occurrences that a text has.
namespace tla {

namespace {

// The first characters of a text in UTF-8, in bytes.
std::size_t size_of_first(std::string_view text, std::size_t characters) {
    std::size_t at = 0;
    for (; characters > 0 && at < text.size(); --characters) {
        static_cast<void>(scl::scl_utf8_next(text, at));
    }
    return at;
}

} // namespace

void Tla_text_scan::Engine::take(const Occurrence& occurrence) {
    if (!within_) return take_first(occurrence);
    window_.add(occurrence);
    if (judge_.may_be_key(occurrence)) add_key(occurrence);
}

// Without a bound it makes no difference where else a value occurs: of each one the first place is
// kept. An item that was put together may be found behind one that begins later.
void Tla_text_scan::Engine::take_first(const Occurrence& occurrence) {
    const std::uint64_t known = window_.last_of(occurrence.hash);
    if (known == Occurrence_window::NONE) {
        window_.add(occurrence);
        if (judge_.may_be_key(occurrence)) add_key(occurrence);
        return;
    }
    Occurrence& first = window_.at(known).occurrence;
    const auto rank = [](const Occurrence& o) { return std::pair(o.first.byte, o.end); };
    if (rank(first) <= rank(occurrence)) return;
    const auto [begin, end] = keys_.equal_range(rank(first));
    const auto same = std::find_if(begin, end, [&occurrence](const auto& key) {
        return key.second.occurrence.hash == occurrence.hash;
    });
    if (same != end) {
        keys_.erase(same);
        add_key(occurrence);
    }
    first = occurrence;
}

void Tla_text_scan::Engine::add_key(const Occurrence& occurrence) {
    const auto at = static_cast<std::size_t>(occurrence.first.byte - buffer_at_);
    const auto size = static_cast<std::size_t>(occurrence.end - occurrence.first.byte);
    const std::string_view text = std::string_view(buffer_).substr(at, size);
    const std::size_t shown = size_of_first(text, TLA_SCAN_QUOTED_CHARACTERS);
    keys_.emplace(std::pair(occurrence.first.byte, occurrence.end),
                  Key_place{occurrence, std::string(text.substr(0, shown)), shown == size});
}

// From there on occurrences may still be found.
Text_place Tla_text_scan::Engine::oldest() const {
    Text_place oldest = place_;
    const auto take_older = [&oldest](const std::optional<Text_place>& place) {
        if (place && place->byte < oldest.byte) oldest = *place;
    };
    for (const Sequence_matcher& matcher : sequences_) {
        take_older(matcher.oldest());
    }
    take_older(numbers_.oldest());
    return oldest;
}

void Tla_text_scan::Engine::settle_keys() {
    if (!within_) return;
    // The first of those that wait is looked at before anything else, as this is asked for each
    // chunk.
    const Occurrence& next = keys_.begin()->second.occurrence;
    if (next.last_word >= place_.word || place_.word - next.last_word <= *within_) return;
    if (!settle_first_keys(oldest().byte)) return;
    const std::uint64_t needed =
        keys_.empty() ? oldest().word
                      : std::min(oldest().word, keys_.begin()->second.occurrence.first.word);
    window_.forget_before(needed > *within_ ? needed - *within_ : 0);
}

// Those that begin before a place, as far as all within their reach is known. False when the
// listener has had enough.
bool Tla_text_scan::Engine::settle_first_keys(std::uint64_t complete_to) {
    const bool is_end = complete_to == ~std::uint64_t{0};
    const auto is_known = [&](const Occurrence& key) {
        return is_end || (key.last_word < place_.word && place_.word - key.last_word > *within_);
    };
    while (!keys_.empty() && !is_over_) {
        const auto begin = keys_.begin();
        const std::uint64_t byte = begin->first.first;
        if (byte >= complete_to) return true;
        auto end = begin;
        for (; end != keys_.end() && end->first.first == byte; ++end) {
            if (!is_known(end->second.occurrence)) return true;
        }
        found_.clear();
        for (auto key = begin; key != end; ++key) {
            judge_.judge(key->second.occurrence, window_, found_);
        }
        report(begin, end);
        keys_.erase(begin, end);
    }
    return !is_over_;
}

// All that stands at one place: of each record the key that is named first, then the shorter
// occurrence; then by the records.
void Tla_text_scan::Engine::report(Key_places::const_iterator begin,
                                   Key_places::const_iterator end) {
    std::ranges::sort(found_, {}, [](const Found_record& found) {
        return std::tuple(found.place, found.key_order, found.end);
    });
    for (const Found_record& found : found_) {
        if (judge_.is_reported(found.place)) continue;
        judge_.mark_reported(found.place);
        const auto key = std::find_if(begin, end, [&found](const auto& one) {
            return one.first.second == found.end;
        });
        const Key_place& place = key->second;
        const Tla_scan_find find{
            .line = found.line,
            .place = decoder_.bytes_in_front() + place.occurrence.first.byte,
            .length = found.end - place.occurrence.first.byte,
            .key = index_.keys[found.key_order],
            .record = static_cast<std::int64_t>(index_.header.data_start + found.place),
            .text = place.text,
            .text_is_whole = place.text_is_whole,
            .fields = found.fields};
        if (listener_->take(find)) continue;
        is_over_ = true;
        return;
    }
}

} // namespace tla
