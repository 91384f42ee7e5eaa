#include "txt/txt_tokeniser.hpp"

#include "txt/word_runs.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

namespace txt {

// Takes no more than the store has room for. process(), which takes the next character, makes room,
// and the run goes on after that. Runs are found in units as they lie in memory: on a big-endian
// processor process() takes every character.
std::size_t Txt_tokeniser::take_run(std::span<const std::byte> units, Txt_text_store& text,
                                    std::uint32_t& type, Txt_parse_operation& operation) {
    if constexpr (std::endian::native == std::endian::big) return 0;
    const auto* const begin = reinterpret_cast<const char16_t*>(units.data());
    const auto* const end = begin + units.size() / sizeof(char16_t);
    const std::size_t found = impl::run_length<char16_t>({begin, end}, begin);
    if (found == 0) return 0; // the tables of rules decide, a character at a time
    operation = state_.is_open() ? Txt_parse_operation::go_on : Txt_parse_operation::start;
    if (!state_.is_open()) {
        text.clear();
        settle_type(static_cast<Class>(impl::unit_bits(begin) & 7U), type);
    }
    const std::span<char16_t> room = text.room();
    const std::size_t count = std::min(found, room.size());
    if (count == 0) return 0;
    std::memcpy(room.data(), begin, count * sizeof(char16_t));
    text.grown(count);
    // What follows the run only needs to know how it ended.
    state_.take_run(impl::unit_bits(begin + count - 1));
    return count * sizeof(char16_t);
}

} // namespace txt
