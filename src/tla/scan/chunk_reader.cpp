#include "tla/scan/chunk_reader.hpp"

#include "tla/scan/number_words.hpp"
#include "txt/txt_token_types.hpp"

// A chunk of ASCII, which most are. Nothing of it changes with normal forms, and a letter has one
// byte in either case: so the forms are made byte by byte, and offsets stay what they are. Tested
// by Scan.FindsWhatAModelFinds, whose model knows no chunks.
namespace tla {

namespace {

// What is cut into words and read in blocks needs a block behind it.
scl::Scl_text_span<char> padded(std::string& text) {
    const std::size_t size = text.size();
    text.append(scl::SCL_BLOCK_BYTES, '\0');
    return {text.data(), text.data() + size};
}

// Where a stretch of a reading stands in the chunk. Its last byte is asked for rather than the one
// behind it: what was left out may stand between.
Chunk_span ascii_span(std::size_t begin, std::size_t end,
                      const std::vector<std::uint32_t>* origins) {
    if (origins == nullptr) {
        return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end)};
    }
    return {(*origins)[begin], (*origins)[end - 1] + 1};
}

std::uint64_t value_of(const char* text, std::size_t begin, std::size_t end) {
    return txt::txt_token_value(scl::Scl_text_span<char>{text + begin, text + end});
}

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

// Setting one bit makes a small letter of a capital.
bool is_ascii_letter(char c) {
    const char folded = static_cast<char>(c | 0x20);
    return folded >= 'a' && folded <= 'z';
}

} // namespace

const Chunk_words& Chunk_reader::read(std::string_view chunk, bool is_ascii) {
    clear();
    if (is_ascii) {
        read_ascii(chunk);
    } else {
        read_wide(chunk);
    }
    return words_;
}

// The memory stays: the next chunk takes as much.
void Chunk_reader::clear() {
    words_.words.clear();
    words_.reading_count = 0;
    words_.number_words.clear();
    words_.number_text.clear();
    words_.written_numbers.clear();
    words_.tail_characters = 0;
    words_.tail_line_ends = 0;
    words_.tail_is_clean = true;
}

// Lists are kept from chunk to chunk, so that a chunk takes no memory of its own.
Reading_tokens& Chunk_reader::reading_of(std::size_t form, std::uint8_t readings) {
    Reading_tokens& reading = words_.forms[form][words_.reading_count];
    reading.readings = readings;
    reading.tokens.clear();
    return reading;
}

void Chunk_reader::read_ascii(std::string_view chunk) {
    const scl::Scl_text_span<char> text{chunk.data(), chunk.data() + chunk.size()};
    each_token(text, [this](std::size_t begin, std::size_t end) {
        words_.words.push_back(ascii_span(begin, end, nullptr));
    });
    // Most chunks are the same in all three readings, and then are walked once.
    const bool is_loosened = loosen(chunk, ascii_loosened_);
    const std::string_view loose = is_loosened ? std::string_view(ascii_loosened_.text) : chunk;
    ascii_parted_.assign(loose);
    const bool is_parted = loose.find('\'') != loose.npos && part(ascii_parted_);
    const auto* const origins = is_loosened ? &ascii_loosened_.origins : nullptr;
    const scl::Scl_text_span<char> loose_text = is_loosened ? padded(ascii_loosened_.text) : text;

    add_ascii_reading(readings_as_written(is_loosened, is_parted), text, nullptr);
    if (is_loosened) add_ascii_reading(readings_as_loosened(is_parted), loose_text, origins);
    if (is_parted) add_ascii_reading(READING_PARTED, padded(ascii_parted_), origins);

    if (!wants(Value_kind::number)) return;
    add_ascii_numbers(loose_text, origins);
    if (!is_loosened) return;
    for (const Chunk_span& word : words_.words) {
        // Where loosening changed the chunk, a number may be whole only as written: "1.5" is two
        // words in the loosened text.
        words_.written_numbers.push_back({value_of(text.begin, word.begin, word.end), word});
    }
}

void Chunk_reader::add_ascii_reading(std::uint8_t readings, scl::Scl_text_span<char> text,
                                     const std::vector<std::uint32_t>* origins) {
    Reading_tokens& simple = reading_of(0, readings);
    Reading_tokens& lower = reading_of(1, readings);
    ++words_.reading_count;
    const bool wants_simple = wants(Value_kind::simple);
    const bool wants_lower = wants(Value_kind::lower);
    if (!wants_simple && !wants_lower) return;
    // Words end at the same bytes in small letters, so that both forms share one walk.
    ascii_lower_.resize(text.size() + 2 * scl::SCL_BLOCK_BYTES);
    scl::scl_lower_ascii(text, ascii_lower_.data());
    each_token(text, [&](std::size_t begin, std::size_t end) {
        const Chunk_span span = ascii_span(begin, end, origins);
        if (wants_simple) simple.tokens.push_back({value_of(text.begin, begin, end), span});
        if (wants_lower) {
            lower.tokens.push_back({value_of(ascii_lower_.data(), begin, end), span});
        }
    });
}

// Numbers are looked for in words alone, never in what they share with marks.
void Chunk_reader::add_ascii_numbers(scl::Scl_text_span<char> text,
                                     const std::vector<std::uint32_t>* origins) {
    ascii_lower_.resize(text.size() + 2 * scl::SCL_BLOCK_BYTES);
    scl::scl_lower_ascii(text, ascii_lower_.data());
    ascii_upper_.assign(text.view());
    for (char& c : ascii_upper_) {
        c = upper(c);
    }
    static_cast<void>(padded(ascii_upper_));
    each_number_word(words_, text, [&](Number_word& word, std::size_t begin, std::size_t end) {
        word.span = ascii_span(begin, end, origins);
        std::size_t letters = 0;
        std::size_t digits = 0;
        for (std::size_t at = begin; at < end; ++at) {
            letters += is_ascii_letter(text.begin[at]) ? 1 : 0;
            digits += text.begin[at] >= '0' && text.begin[at] <= '9' ? 1 : 0;
        }
        add_value(word, value_of(text.begin, begin, end));
        if (letters > 0) {
            add_value(word, value_of(ascii_upper_.data(), begin, end));
            add_value(word, value_of(ascii_lower_.data(), begin, end));
        }
        word.has_digit = digits > 0;
        // A long word without a digit is text, and would make every text one stretch.
        word.is_group =
            letters + digits == end - begin && (word.has_digit || letters <= MOST_GROUP_LETTERS);
        if (!word.is_group) return;
        word.characters = static_cast<std::uint32_t>(end - begin);
        word.text.begin = static_cast<std::uint32_t>(words_.number_text.size());
        words_.number_text.append(text.begin + begin, text.begin + end);
        word.text.end = static_cast<std::uint32_t>(words_.number_text.size());
    });
}

} // namespace tla
