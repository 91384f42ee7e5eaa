#pragma once

#include "tla/scan/chunk_cache.hpp"
#include "tla/scan/chunk_reader.hpp"
#include "tla/scan/key_places.hpp"
#include "tla/scan/number_matcher.hpp"
#include "tla/scan/occurrence_window.hpp"
#include "tla/scan/record_judge.hpp"
#include "tla/scan/sequence_matcher.hpp"
#include "tla/scan/small_text.hpp"
#include "tla/scan/text_decoder.hpp"
#include "tla/scan/tla_text_scan.hpp"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tla {

// The way of a text:
//
//     bytes --> UTF-8 --> chunks --> words, in each form and reading --> values --> occurrences
//                                                                                       |
//                    listener <-- records with enough fields in reach <-- keys that wait +
class Tla_text_scan::Engine {
public:
    Engine(const Index_state& index, const Tla_scan_options& options);

    void start(Tla_scan_listener& listener);
    bool feed(std::span<const std::byte> bytes);
    bool finish();

private:
    void use(const Scan_tables& tables);
    void make_small_tables();
    void start_reading();
    void choose_tables(bool is_end);
    void scan_buffer(bool is_end);
    void end_text();
    void scan_text(std::string_view text);
    void scan_chunk(std::string_view chunk, bool is_ascii);
    [[nodiscard]] bool pass_known(std::string_view chunk);
    void learn(Chunk_cache::Entry& entry, std::string_view chunk, const Chunk_words& words);
    [[nodiscard]] Chunk_interest interest_of(std::string_view chunk,
                                             const Chunk_words& words) const;
    [[nodiscard]] bool may_begin_number(const Chunk_words& words) const;
    [[nodiscard]] bool begins_value(Value_kind kind, std::uint64_t value) const;
    void read_chunk(const Chunk_words& words);
    void gather_chunk(const Chunk_words& words);
    void drop_text();

    void take(const Occurrence& occurrence);
    void take_first(const Occurrence& occurrence);
    void add_key(const Occurrence& occurrence);
    [[nodiscard]] Text_place oldest() const;
    void settle_keys();
    void forget_words();
    bool settle_first_keys(std::uint64_t complete_to);
    void judge_batch();
    void report(std::uint64_t byte);
    [[nodiscard]] std::string_view text_at(std::uint64_t byte, std::uint64_t end) const;

    const Index_state& index_;
    const Scan_tables* tables_ = nullptr;             // null while a short text waits for its end
    std::unique_ptr<const Scan_tables> small_tables_; // of a short text
    Value_set* gathered_ = nullptr;                   // while its values are gathered
    bool is_converted_;
    std::size_t least_;
    std::size_t short_text_; // bytes
    std::optional<std::uint64_t> within_;
    std::size_t window_bytes_;
    Tla_scan_listener* listener_ = nullptr;
    bool is_over_ = true; // the listener wants no more, or the text failed

    Text_decoder decoder_;
    std::string buffer_;          // what is decoded and still needed
    std::uint64_t buffer_at_ = 0; // where it stands in the text
    std::size_t scanned_ = 0;     // of it
    std::size_t uncut_ = 0;       // of it, where there is no cut up to here
    Text_place place_{};          // of what is scanned next

    bool has_numbers_;
    Chunk_cache cache_;
    const Scan_tables* cached_of_ = nullptr; // the tables that it was asked of
    Chunk_reader reader_;
    std::array<Sequence_matcher, 2> sequences_;
    Number_matcher numbers_;
    Line_counter lines_;

    Occurrence_window window_;
    Key_places keys_;
    Record_judge judge_;
    std::vector<Key_place> batch_; // those that stand at one place
    std::vector<Found_record> found_;
    // Without a bound of words: how keys are written, as their text is long gone when they are
    // judged. By their numbers.
    std::unordered_map<std::uint64_t, std::string> texts_;
    bool has_one_field_; // nothing else can be within reach
};

} // namespace tla
