#pragma once

#include <cstddef>
#include <string_view>

namespace tla {

// Text in UTF-8 is cut into chunks where nothing reaches over: no word, normal form, letter case or
// reading. That is behind each LF; behind white space, where no mark follows that could join it;
// and in long stretches without either, in front of some marks of punctuation and between Chinese
// characters.
struct Chunk_cut {
    std::size_t begin; // of the chunk
    std::size_t end;   // of the chunk; white space follows, or nothing, or the next one
    std::size_t next;  // behind the white space
    bool is_ascii;
};

// The chunk at or behind `at`. The text ends where it may be cut. A block (scl::SCL_BLOCK_BYTES) is
// readable behind it. begin == end when there is none.
[[nodiscard]] Chunk_cut next_chunk(std::string_view text, std::size_t at);

// Where a text that goes on may be cut at last; 0 when nowhere. What is in front of `known` cannot
// be cut, as was found before.
[[nodiscard]] std::size_t last_cut(std::string_view text, std::size_t known);

} // namespace tla
