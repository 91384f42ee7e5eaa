#include "tla/scan/scan_engine.hpp"

#include "tla/scan/chunk_splitter.hpp"

#include <algorithm>

// Goes through a text once. Most chunks of a text were seen before and begin nothing; they pass by
// the cache. What takes time is asked in the order of its cost: cache, filter, tables, records.
// Tested by Scan.FindsWhatAModelFinds, in windows of one byte and of all.
namespace tla {

namespace {

// Behind the buffer's text, for what is read in blocks.
constexpr std::size_t PADDING = 64;

// Of fewer records tables are made in no time.
std::size_t short_text_of(const Index_state& index) {
    constexpr std::uint64_t MANY_RECORDS = 100'000;
    return index.records->count() < MANY_RECORDS ? 0 : std::size_t{32} << 10;
}

// The key is a field as well, so that 0 and 1 mean the same.
std::size_t least_of(const Index_state& index, const Tla_scan_options& options) {
    const auto usual = std::min<std::size_t>(index.fields.size(), 2);
    return std::max<std::size_t>(options.least.value_or(usual), 1);
}

// Forms of which the data set has no value are not made.
std::array<bool, VALUE_KINDS> kinds_of(const Index_state& index) {
    std::array<bool, VALUE_KINDS> kinds{};
    for (std::size_t kind = 0; kind < VALUE_KINDS; ++kind) {
        kinds[kind] = index.records->totals().largest[kind] > 0;
    }
    return kinds;
}

} // namespace

// Everything that a text needs is made here once and used for text after text: a folder of a
// hundred thousand mails takes no more memory than one.
Tla_text_scan::Engine::Engine(const Index_state& index, const Tla_scan_options& options)
    : index_(index),
      is_converted_(options.is_converted),
      least_(least_of(index, options)),
      short_text_(options.short_text.value_or(short_text_of(index))),
      within_(options.within),
      window_bytes_(std::max<std::size_t>(options.window, 1)),
      has_numbers_(kinds_of(index)[static_cast<std::size_t>(Value_kind::number)]),
      cache_(index.hashes),
      reader_(kinds_of(index)),
      sequences_{Sequence_matcher(Value_kind::simple, index.hashes),
                 Sequence_matcher(Value_kind::lower, index.hashes)},
      numbers_(index.hashes),
      judge_(index, least_, options.within),
      has_one_field_(index.records->kinds().size() == 1) {}

void Tla_text_scan::Engine::start(Tla_scan_listener& listener) {
    is_over_ = true; // should what follows fail
    gathered_ = nullptr;
    listener_ = &listener;
    decoder_.start(is_converted_);
    buffer_.clear();
    buffer_at_ = 0;
    uncut_ = 0;
    start_reading();
    window_.clear();
    keys_.clear();
    texts_.clear();
    // The tables of the last short text go, and with them what the cache knows by them.
    if (cached_of_ == small_tables_.get()) cached_of_ = nullptr;
    small_tables_.reset();
    tables_ = nullptr;
    if (short_text_ == 0 || !index_.does_without_tables()) use(index_.tables());
    is_over_ = false;
}

// Of a text, from its front.
void Tla_text_scan::Engine::start_reading() {
    scanned_ = 0;
    place_ = {};
    for (Sequence_matcher& matcher : sequences_) {
        matcher.start();
    }
    numbers_.start();
    lines_.start(0);
}

// What is known of chunks was found in the tables before, if they were others.
void Tla_text_scan::Engine::use(const Scan_tables& tables) {
    if (cached_of_ != &tables) cache_.clear();
    cached_of_ = &tables;
    tables_ = &tables;
    judge_.start(tables);
}

// The text is in the buffer.
void Tla_text_scan::Engine::make_small_tables() {
    Value_set values(index_.hashes);
    gathered_ = &values;
    buffer_.append(PADDING, '\0');
    scan_text(std::string_view(buffer_).substr(0, buffer_.size() - PADDING));
    buffer_.resize(buffer_.size() - PADDING);
    gathered_ = nullptr;
    start_reading();
    // The records that can be reported at all: those of which the text has a key and enough other
    // fields, word by word. When they are many, the tables of all records pay.
    const auto offsets = records_with(values, *index_.records, index_.key_order, least_);
    if (!offsets) return use(index_.tables());
    small_tables_ = std::make_unique<const Scan_tables>(
        *index_.records, index_.key_order, index_.hashes, index_.room_for_pairs(), *offsets);
    cached_of_ = nullptr;
    use(*small_tables_);
}

// Windows are small enough for the processor's cache, whatever the caller's pieces are.
bool Tla_text_scan::Engine::feed(std::span<const std::byte> bytes) {
    while (!bytes.empty() && !is_over_) {
        const auto piece = bytes.first(std::min(bytes.size(), window_bytes_));
        bytes = bytes.subspan(piece.size());
        is_over_ = true; // until this is done
        decoder_.decode(piece, buffer_);
        is_over_ = false;
        // Still short: its tables are chosen when its size is known.
        if (tables_ == nullptr && buffer_.size() <= short_text_) continue;
        if (buffer_.size() - scanned_ >= window_bytes_) scan_buffer(false);
    }
    return !is_over_;
}

// `is_over_` is set while something may throw: a text that failed takes no more.
bool Tla_text_scan::Engine::finish() {
    if (!is_over_) {
        is_over_ = true;
        decoder_.finish(buffer_);
        is_over_ = false;
        scan_buffer(true);
    }
    const bool ended_well = !is_over_;
    is_over_ = true;
    return ended_well;
}

// A short text waits for its end: its own values then say which records are worth a table.
void Tla_text_scan::Engine::choose_tables(bool is_end) {
    if (tables_ != nullptr) return;
    if (is_end && buffer_.size() <= short_text_) {
        make_small_tables();
    } else {
        use(index_.tables());
    }
}

// Where an exception leaves, the text is over.
void Tla_text_scan::Engine::scan_buffer(bool is_end) try {
    choose_tables(is_end);
    const std::size_t size = buffer_.size();
    // Up to a place where no rule can look across, see last_cut().
    const std::size_t end = is_end ? size : last_cut(buffer_, std::max(uncut_, scanned_));
    if (end > scanned_) {
        buffer_.append(PADDING, '\0');
        scan_text(std::string_view(buffer_).substr(0, end));
        buffer_.resize(size);
        // The listener has had enough.
        if (is_over_) return;
    }
    if (is_end) return end_text();
    // A cut may need two characters to be seen.
    constexpr std::size_t LONGEST_CUT = 6;
    uncut_ = size > LONGEST_CUT ? size - LONGEST_CUT : 0;
    forget_words();
    drop_text();
} catch (...) {
    is_over_ = true;
    throw;
}

// Nothing goes on any more, so that all keys that wait have all that is within their reach.
void Tla_text_scan::Engine::end_text() {
    for (Sequence_matcher& matcher : sequences_) {
        matcher.start();
    }
    numbers_.start();
    static_cast<void>(settle_first_keys(~std::uint64_t{0}));
}

// What still belongs to something that may go on stays.
void Tla_text_scan::Engine::drop_text() {
    std::uint64_t needed = oldest().byte;
    if (within_ && !keys_.empty()) needed = std::min(needed, keys_.front().byte);
    const auto size = static_cast<std::size_t>(needed - buffer_at_);
    // Erasing moves what is left, so it waits until half a window can go.
    if (size < window_bytes_ / 2) return;
    lines_.look_at(buffer_, buffer_at_);
    static_cast<void>(lines_.line_at(std::max(needed, place_.byte)));
    buffer_.erase(0, size);
    buffer_at_ += size;
    scanned_ -= size;
    uncut_ -= std::min(uncut_, size);
}

// Keys are settled between chunks, when nothing of a chunk is half done.
void Tla_text_scan::Engine::scan_text(std::string_view text) {
    lines_.look_at(text, buffer_at_);
    for (std::size_t at = scanned_; at < text.size() && !is_over_;) {
        const Chunk_cut cut = next_chunk(text, at);
        // The gaps between chunks matter to numbers alone: other values go over any white space.
        if (has_numbers_) numbers_.pass_space(text.substr(at, cut.begin - at));
        place_.byte = buffer_at_ + cut.begin;
        if (cut.end > cut.begin) {
            if (!keys_.empty()) settle_keys();
            scan_chunk(text.substr(cut.begin, cut.end - cut.begin), cut.is_ascii);
        }
        if (has_numbers_) numbers_.pass_space(text.substr(cut.end, cut.next - cut.end));
        at = cut.next;
        place_.byte = buffer_at_ + at;
    }
    scanned_ = text.size();
}

// Long chunks are not remembered: they hardly come again, and would push out short ones.
void Tla_text_scan::Engine::scan_chunk(std::string_view chunk, bool is_ascii) {
    if (gathered_ != nullptr) return gather_chunk(reader_.read(chunk, is_ascii));
    const bool is_short = chunk.size() <= Chunk_cache::MOST_BYTES;
    if (is_short && pass_known(chunk)) return;
    const Chunk_words& words = reader_.read(chunk, is_ascii);
    if (is_short) {
        Chunk_cache::Entry& entry = cache_.find(chunk);
        if (entry.interest == Chunk_interest::unknown) {
            learn(entry, chunk, words);
            if (pass_known(chunk)) return;
        }
    }
    read_chunk(words);
    place_.word += words.words.size();
}

// Most chunks go this way.
bool Tla_text_scan::Engine::pass_known(std::string_view chunk) {
    const Chunk_cache::Entry& entry = cache_.find(chunk);
    const bool is_idle = sequences_[0].is_idle() && sequences_[1].is_idle() && numbers_.is_idle();
    if (!is_idle || numbers_.may_end_stretch()) return false;
    if (entry.interest == Chunk_interest::none) {
        numbers_.pass_other();
    } else if (entry.interest == Chunk_interest::group) {
        numbers_.pass_group(chunk, place_);
    } else {
        return false;
    }
    place_.word += entry.words;
    return true;
}

// More words than the entry counts: it is read each time.
void Tla_text_scan::Engine::learn(Chunk_cache::Entry& entry, std::string_view chunk,
                                  const Chunk_words& words) {
    const bool are_few = words.words.size() <= Chunk_cache::MOST_WORDS;
    entry.interest = are_few ? interest_of(chunk, words) : Chunk_interest::some;
    entry.words = static_cast<std::uint8_t>(are_few ? words.words.size() : 0);
}

// Or is one.
bool Tla_text_scan::Engine::begins_value(Value_kind kind, std::uint64_t value) const {
    return tables_->ask(index_.hashes.extended(index_.hashes.start(kind), value)).any();
}

// Neither a hyphen alone nor what is left out is of no interest where numbers are looked for: it
// may stand between groups.
Chunk_interest Tla_text_scan::Engine::interest_of(std::string_view chunk,
                                                  const Chunk_words& words) const {
    for (const Value_kind kind : {Value_kind::simple, Value_kind::lower}) {
        const auto& readings = words.forms[static_cast<std::size_t>(kind)];
        for (std::size_t i = 0; i < words.reading_count; ++i) {
            for (const Chunk_token& token : readings[i].tokens) {
                if (begins_value(kind, token.value)) return Chunk_interest::some;
            }
        }
    }
    if (!has_numbers_) return Chunk_interest::none;
    if (words.number_words.empty() || may_begin_number(words)) return Chunk_interest::some;
    if (!words.number_words.back().is_group) return Chunk_interest::none;
    const bool is_group =
        words.number_words.size() == 1 && words.number_words.back().characters == chunk.size();
    return is_group ? Chunk_interest::group : Chunk_interest::some;
}

// A group with a digit begins stretches, whatever it is by itself.
bool Tla_text_scan::Engine::may_begin_number(const Chunk_words& words) const {
    for (const Chunk_token& word : words.written_numbers) {
        if (begins_value(Value_kind::number, word.value)) return true;
    }
    for (const Number_word& word : words.number_words) {
        if (word.has_digit && word.is_group) return true;
        for (std::size_t i = 0; i < word.value_count; ++i) {
            if (begins_value(Value_kind::number, word.values[i])) return true;
        }
    }
    return false;
}

// Simple, SimpleNC, then numbers; in which order they are found makes no difference.
void Tla_text_scan::Engine::read_chunk(const Chunk_words& words) {
    const Chunk_place place(place_, words, lines_);
    const auto take_one = [this](const Occurrence& occurrence) { take(occurrence); };
    for (std::size_t form = 0; form < sequences_.size(); ++form) {
        sequences_[form].read(std::span(words.forms[form]).first(words.reading_count), place,
                              *tables_, take_one);
    }
    if (has_numbers_) numbers_.read(words, place, *tables_, take_one);
}

// Whatever the filter would be asked of, it may be asked of later.
void Tla_text_scan::Engine::gather_chunk(const Chunk_words& words) {
    for (const auto& readings : words.forms) {
        for (std::size_t i = 0; i < words.reading_count; ++i) {
            for (const Chunk_token& token : readings[i].tokens) {
                gathered_->add(token.value);
            }
        }
    }
    if (!has_numbers_) return;
    const Chunk_place place(place_, words, lines_);
    numbers_.gather(words, place, [this](std::uint64_t value) { gathered_->add(value); });
}

} // namespace tla
