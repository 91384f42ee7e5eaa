#pragma once

#include "tla/scan/tla_scan_index.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace tla {

// A record that a text holds, at the first place that will do. What the views lead to lasts until
// the listener returns.
struct Tla_scan_find {
    std::uint64_t line;    // of the occurrence's first character; lines end at LF, the first is 1
    std::uint64_t place;   // of that character, in bytes from the front of the text; of a text in
                           // UTF-16, or a converted one, in its UTF-8 without a mark
    std::uint64_t length;  // of the occurrence, in bytes, likewise
    std::size_t key;       // which field occurs there, a place among the index's fields
    std::int64_t record;   // the record's offset in the data set file, in bytes
    std::string_view text; // the occurrence as written, in UTF-8, with the bytes that are none; the
                           // first TLA_SCAN_QUOTED_CHARACTERS of it
    bool text_is_whole;
    std::span<const std::size_t> fields; // those that occur within reach, the key among them;
                                         // ascending places among the index's fields
};

inline constexpr std::size_t TLA_SCAN_QUOTED_CHARACTERS = 1000;

// Is told what a text holds, in the order of the places, at one place in that of the records.
class Tla_scan_listener {
public:
    Tla_scan_listener() = default;
    Tla_scan_listener(const Tla_scan_listener&) = delete;
    Tla_scan_listener& operator=(const Tla_scan_listener&) = delete;
    virtual ~Tla_scan_listener() = default;

    // False ends the scan of this text. What it throws leaves feed() or finish(), after which the
    // text is over, too.
    virtual bool take(const Tla_scan_find& find) = 0;
};

struct Tla_scan_options {
    // How many fields of a record must occur, the key among them. None: 2, or 1 where records have
    // one field. 0 counts as 1; more than there are fields is in no text.
    std::optional<std::size_t> least = {};
    // How many words the other fields may be away from the key. None: no bound, which keeps what is
    // found until the text ends.
    std::optional<std::uint64_t> within = 100;
    // The text comes in UTF-8 from a converter: two bytes that look like a mark of UTF-16 are none,
    // and a mark that is left in front does not count for the places.
    bool is_converted = false;
    // Up to how many bytes a text is scanned without tables of all records, where there are none
    // yet: each such text takes a pass over the records, so that no more than the first two are
    // scanned so. None: what pays for a data set of that many records.
    std::optional<std::size_t> short_text = {};
    // About how many bytes of a text are gone through at a time. It makes no difference to what is
    // found.
    std::size_t window = std::size_t{256} << 10;
};

// Scans texts, one after the other, for the records of a data set. Each text comes in pieces of any
// size: start(), any number of feed(), finish(). Keep one for many texts: what it learnt of words
// serves the next text. Memory does not grow with a text, but for one without white space and
// punctuation, or without a bound of words. For one thread at a time.
//
// Bytes are UTF-8, or UTF-16 behind its byte order mark; nothing is refused for them. Memory
// exhausted is thrown (std::bad_alloc); after an exception start() begins the next text.
class Tla_text_scan {
public:
    // The index must outlive the scan.
    explicit Tla_text_scan(const Tla_scan_index& index, const Tla_scan_options& options = {});
    ~Tla_text_scan();
    Tla_text_scan(const Tla_text_scan&) = delete;
    Tla_text_scan& operator=(const Tla_text_scan&) = delete;

    // Begins a text; whatever of another one was not finished is forgotten. The listener must last
    // until finish().
    void start(Tla_scan_listener& listener);
    // The next bytes of the text. False when the listener has ended the scan: what is fed from
    // there on is passed over.
    bool feed(std::span<const std::byte> bytes);
    // The text is whole. False likewise.
    bool finish();

private:
    class Engine;
    std::unique_ptr<Engine> engine_;
};

} // namespace tla

#pragma GCC visibility pop
