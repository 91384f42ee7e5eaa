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

// An occurrence is kept for the keys near it even if it is no key itself.
void Tla_text_scan::Engine::take(const Occurrence& occurrence) {
    if (!within_) return take_first(occurrence);
    const bool is_key = !judge_.is_done(occurrence.hash) && judge_.may_be_key(occurrence);
    // With one field a record there is no other field whose occurrence could count.
    if (!is_key && has_one_field_) return;
    window_.add(occurrence, place_.word);
    if (is_key) add_key(occurrence);
}

// Without a bound it makes no difference where else a value occurs: of each one the first place is
// kept. An item that was put together may be found behind one that begins later.
void Tla_text_scan::Engine::take_first(const Occurrence& occurrence) {
    const std::uint64_t known = window_.last_of(occurrence.hash);
    if (known == Occurrence_window::NONE) {
        window_.add(occurrence, place_.word);
        if (judge_.may_be_key(occurrence)) add_key(occurrence);
        return;
    }
    Occurrence& first = window_.at(known).occurrence;
    const auto rank = [](const Occurrence& o) { return std::pair(o.first.byte, o.end); };
    if (rank(first) <= rank(occurrence)) return;
    first = occurrence; // the place that waits is passed over, as it is no longer the value's
    if (texts_.contains(known)) {
        texts_[known] = text_at(occurrence.first.byte, occurrence.end);
        keys_.push({occurrence.first.byte, occurrence.end, known});
    }
}

// The text of a key without bound has to be copied: the buffer is gone when it is judged.
void Tla_text_scan::Engine::add_key(const Occurrence& occurrence) {
    const std::uint64_t number = window_.end() - 1;
    if (!within_) texts_.emplace(number, text_at(occurrence.first.byte, occurrence.end));
    keys_.push({occurrence.first.byte, occurrence.end, number});
}

std::string_view Tla_text_scan::Engine::text_at(std::uint64_t byte, std::uint64_t end) const {
    const std::string_view text = std::string_view(buffer_).substr(
        static_cast<std::size_t>(byte - buffer_at_), static_cast<std::size_t>(end - byte));
    return text.substr(0, size_of_first(text, TLA_SCAN_QUOTED_CHARACTERS));
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
    const Occurrence& next = window_.at(keys_.front().number).occurrence;
    if (next.last_word >= place_.word || place_.word - next.last_word <= *within_) return;
    if (settle_first_keys(oldest().byte)) forget_words();
}

// What no key that waits or is yet to come can reach.
void Tla_text_scan::Engine::forget_words() {
    if (!within_) return;
    std::uint64_t needed = oldest().word;
    if (!keys_.empty()) {
        needed = std::min(needed, window_.at(keys_.front().number).occurrence.first.word);
    }
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
        const std::uint64_t byte = keys_.front().byte;
        if (byte >= complete_to) return true;
        batch_.clear();
        // All keys at one place are judged together: which of them a record is reported for depends
        // on the others.
        bool all_known = true;
        for (; !keys_.empty() && keys_.front().byte == byte; keys_.pop()) {
            batch_.push_back(keys_.front());
            all_known &= is_known(window_.at(batch_.back().number).occurrence);
        }
        if (!all_known) {
            for (const Key_place& key : batch_) {
                keys_.push(key);
            }
            return true;
        }
        judge_batch();
    }
    return !is_over_;
}

void Tla_text_scan::Engine::judge_batch() {
    found_.clear();
    for (const Key_place& key : batch_) {
        const Occurrence& occurrence = window_.at(key.number).occurrence;
        const bool is_current = occurrence.first.byte == key.byte && occurrence.end == key.end;
        if (is_current) judge_.judge(key.number, window_, found_);
    }
    if (!found_.empty()) report(batch_.front().byte);
}

// All that stands at one place: of each record the key that is named first, then the shorter
// occurrence; then by the records.
void Tla_text_scan::Engine::report(std::uint64_t byte) {
    std::ranges::sort(found_, {}, [](const Found_record& found) {
        return std::tuple(found.offset, found.key_order, found.end);
    });
    for (const Found_record& found : found_) {
        if (judge_.is_reported(found.offset)) continue;
        judge_.mark_reported(found.offset);
        const auto key = std::ranges::find(batch_, found.end, &Key_place::end);
        const std::string_view text =
            within_ ? text_at(byte, found.end) : std::string_view(texts_.at(key->number));
        const Tla_scan_find find{
            .line = found.line,
            .place = decoder_.bytes_in_front() + byte,
            .length = found.end - byte,
            .key = index_.keys[found.key_order],
            .record = static_cast<std::int64_t>(index_.header.data_start + found.offset),
            .text = text,
            .text_is_whole = text.size() == found.end - byte,
            .fields = found.fields};
        if (listener_->take(find)) continue;
        is_over_ = true;
        return;
    }
}

} // namespace tla
