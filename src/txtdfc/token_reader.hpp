#pragma once

#include "cerc/cerc_utf16_reader.hpp"
#include "txt/txt_text_store.hpp"
#include "txt/txt_token_types.hpp"
#include "txt/txt_tokeniser.hpp"

#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace txtdfc {

// Reads the tokens of a text: passes its characters to a tokeniser, carries out the operations that
// come back, and passes each token and trailer to a sink. Offsets are bytes in the content. A sink
// has
//
//     void add_token(std::u16string_view text, std::uint32_t type, std::uint64_t offset,
//                    std::uint64_t length);
//     void add_trailer(std::u16string_view text, std::uint64_t offset);
//
// The text is the store's open text; the sink may call keep() on the store.
template <typename Tokeniser, typename Sink>
class Token_reader {
public:
    Token_reader(cerc::Cerc_utf16_reader& reader, Tokeniser& tokeniser, txt::Txt_text_store& text,
                 Sink& sink)
        : reader_(reader), tokeniser_(tokeniser), text_(text), sink_(sink) {}

    // Reads from the reader's position to the end, or until the status has failed; it must be the
    // status that the reader reports to. Throws std::logic_error when the tokeniser answers with an
    // operation that does not fit.
    void read_all(scl::Scl_status& status);

private:
    using Operation = txt::Txt_parse_operation;

    void take_run();
    void take_character(char32_t character, std::uint64_t offset, scl::Scl_status& status);
    [[nodiscard]] bool take_end(std::uint64_t offset, scl::Scl_status& status);
    [[nodiscard]] bool wants_character_again() const;
    void obey(std::uint64_t offset, scl::Scl_status& status);
    void start(std::uint64_t offset);
    void set_checkpoint(std::uint64_t offset);
    void roll_back(scl::Scl_status& status);

    cerc::Cerc_utf16_reader& reader_;
    Tokeniser& tokeniser_;
    txt::Txt_text_store& text_; // its open text is the token's
    Sink& sink_;

    std::uint32_t type_ = txt::TXT_TOKEN_UNCLASSIFIED;
    Operation operation_ = Operation::finish;
    std::uint64_t start_ = 0; // of the token or the trailer

    // The length is enough: the token's text only grew since the checkpoint.
    bool checkpointed_ = false;
    std::uint32_t checkpoint_type_ = txt::TXT_TOKEN_UNCLASSIFIED;
    std::size_t checkpoint_length_ = 0;
    std::uint64_t checkpoint_offset_ = 0;
};

template <typename Tokeniser, typename Sink>
void Token_reader<Tokeniser, Sink>::read_all(scl::Scl_status& status) {
    while (!status.has_failed()) {
        take_run();
        const std::uint64_t offset = reader_.tell();
        const char32_t character = reader_.read();
        if (character != cerc::Cerc_reader_base::END_OF_DATA) {
            take_character(character, offset, status);
        } else if (!status.has_failed() && take_end(offset, status)) {
            return;
        }
    }
}

// A run of letters or digits in one step: nearly all words are one.
template <typename Tokeniser, typename Sink>
inline void Token_reader<Tokeniser, Sink>::take_run() {
    const std::size_t bytes = tokeniser_.run(reader_.buffered_bytes(), text_, type_, operation_);
    if (bytes == 0) return;
    if (operation_ == Operation::start) start(reader_.tell());
    reader_.skip(bytes);
}

template <typename Tokeniser, typename Sink>
inline void Token_reader<Tokeniser, Sink>::take_character(char32_t character, std::uint64_t offset,
                                                          scl::Scl_status& status) {
    do {
        tokeniser_.process(character, text_, type_, operation_);
        obey(offset, status);
    } while (wants_character_again());
}

// True when all is done. After a roll-back there are characters to be read again.
template <typename Tokeniser, typename Sink>
inline bool Token_reader<Tokeniser, Sink>::take_end(std::uint64_t offset, scl::Scl_status& status) {
    tokeniser_.breakpoint(text_, type_, operation_);
    if (operation_ == Operation::start || operation_ == Operation::go_on ||
        operation_ == Operation::checkpoint) {
        throw std::logic_error("Txtdfc_format_codec::create_text_view() - unexpected operation");
    }
    obey(offset, status);
    return operation_ == Operation::finish || operation_ == Operation::token ||
           operation_ == Operation::trailer;
}

template <typename Tokeniser, typename Sink>
inline bool Token_reader<Tokeniser, Sink>::wants_character_again() const {
    return operation_ == Operation::checkpoint || operation_ == Operation::token ||
           operation_ == Operation::trailer;
}

// `offset` is that of the character that the operation answers.
template <typename Tokeniser, typename Sink>
inline void Token_reader<Tokeniser, Sink>::obey(std::uint64_t offset, scl::Scl_status& status) {
    switch (operation_) {
    case Operation::start:
        return start(offset);
    case Operation::checkpoint:
        return set_checkpoint(offset);
    case Operation::roll_back:
        return roll_back(status);
    case Operation::token:
        sink_.add_token(text_.open_text(), type_, start_, offset - start_);
        return start(0);
    case Operation::trailer:
        sink_.add_trailer(text_.open_text(), start_);
        return start(0);
    case Operation::go_on:
    case Operation::finish:
        return;
    }
}

template <typename Tokeniser, typename Sink>
inline void Token_reader<Tokeniser, Sink>::start(std::uint64_t offset) {
    start_ = offset;
    checkpointed_ = false;
}

// Notes the token as it is before a character that may not belong to it, as the stop in "e.g".
template <typename Tokeniser, typename Sink>
inline void Token_reader<Tokeniser, Sink>::set_checkpoint(std::uint64_t offset) {
    checkpoint_length_ = text_.open_length();
    checkpoint_offset_ = offset;
    checkpoint_type_ = type_;
    checkpointed_ = true;
}

// Goes back to the checkpoint. The characters behind it are read again, as part of what follows.
template <typename Tokeniser, typename Sink>
void Token_reader<Tokeniser, Sink>::roll_back(scl::Scl_status& status) {
    if (!checkpointed_) {
        throw std::logic_error(
            "Txtdfc_format_codec::create_text_view() - haven't been checkpointed");
    }
    text_.cut(checkpoint_length_);
    type_ = checkpoint_type_;
    reader_.seek(checkpoint_offset_, status);
    checkpointed_ = false;
}

} // namespace txtdfc
