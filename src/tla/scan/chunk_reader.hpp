#pragma once

#include "scl/text/scl_text_span.hpp"
#include "tla/scan/chunk_words.hpp"
#include "tla/scan/loosened.hpp"
#include "tla/scan/scan_hashes.hpp"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tla {

// Works out a chunk's words. ASCII stays bytes; other text becomes UTF-16. Both give the same,
// which Scan.FindsWhatAModelFinds tests.
class Chunk_reader {
public:
    // For the kinds of values that are looked for.
    explicit Chunk_reader(const std::array<bool, VALUE_KINDS>& kinds) : kinds_(kinds) {}

    // The chunk's words, valid until the next call. A block (scl::SCL_BLOCK_BYTES) is readable
    // behind the chunk.
    const Chunk_words& read(std::string_view chunk, bool is_ascii);

private:
    [[nodiscard]] bool wants(Value_kind kind) const {
        return kinds_[static_cast<std::size_t>(kind)];
    }
    void clear();
    Reading_tokens& reading_of(std::size_t form, std::uint8_t readings);

    void read_ascii(std::string_view chunk);
    void add_ascii_reading(std::uint8_t readings, scl::Scl_text_span<char> text,
                           const std::vector<std::uint32_t>* origins);
    void add_ascii_numbers(scl::Scl_text_span<char> text,
                           const std::vector<std::uint32_t>* origins);

    void read_wide(std::string_view chunk);
    void widen(std::string_view chunk);
    void add_wide_reading(std::uint8_t readings, std::u16string_view text,
                          const std::vector<std::uint32_t>* origins);
    void add_wide_form(Value_kind kind, std::uint8_t readings, std::u16string_view text,
                       const std::vector<std::uint32_t>* origins);
    void format(Value_kind kind, std::u16string_view text);
    void append_formatted(Value_kind kind, std::u16string_view text, std::size_t offset);
    void add_wide_numbers(std::u16string_view text, const std::vector<std::uint32_t>* origins);
    void add_wide_written_numbers();
    [[nodiscard]] Chunk_span wide_span(std::size_t begin, std::size_t end,
                                       const std::vector<std::uint32_t>* origins) const;

    std::array<bool, VALUE_KINDS> kinds_;
    Chunk_words words_{};

    Reading<char> ascii_loosened_;
    std::string ascii_parted_;
    std::string ascii_lower_;
    std::string ascii_upper_;

    std::u16string wide_;
    std::vector<std::uint32_t> byte_offsets_; // of the units of wide_, and of its end
    Reading<char16_t> wide_loosened_;
    std::u16string wide_parted_;
    std::u16string formatted_;
    std::vector<std::uint32_t> unit_offsets_; // of the units of formatted_ in a reading's text
    std::u16string number_form_;
};

} // namespace tla
