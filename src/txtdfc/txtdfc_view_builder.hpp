#pragma once

#include "cerc/cerc_utf16_reader.hpp"
#include "txt/txt_parse_operation.hpp"
#include "txtdfc/txtdfc_text_view.hpp"
#include "txtdfc/txtdfc_token_pool.hpp"

#include <array>
#include <cstdint>
#include <cstdio>
#include <new>
#include <stdexcept>

namespace txtdfc {

// Fills a view with the tokens of what a reader reads: gives the characters to a tokeniser and does
// what it asks. Offsets are bytes in the content.
template <typename Tokeniser>
class Txtdfc_view_builder {
public:
    Txtdfc_view_builder(cerc::Cerc_utf16_reader& reader, Tokeniser& tokeniser,
                        Txtdfc_text_view& view, Txtdfc_token_pool& pool)
        : reader_(reader),
          tokeniser_(tokeniser),
          view_(view),
          pool_(pool),
          text_(view.text_store()) {}

    // Reads from where the reader stands to the end, or until the status, which must be the one
    // the reader reports in, has failed. Throws std::logic_error when the tokeniser breaks its
    // contract, std::runtime_error when the pool is exhausted.
    void build(scl::Scl_status& status);

private:
    using Operation = txt::Txt_parse_operation;

    [[nodiscard]] bool on_character(std::uint64_t offset, scl::Scl_status& status);
    [[nodiscard]] bool on_end(std::uint64_t offset, scl::Scl_status& status);
    void take_run();
    void start_token(std::uint64_t offset) {
        token_start_ = offset;
        checkpointed_ = false;
    }
    void set_checkpoint(std::uint64_t offset);
    void roll_back(scl::Scl_status& status);
    void end_token(std::uint64_t offset);
    void end_trailer();
    void make_token(std::u16string_view text, std::uint32_t type, std::uint64_t length);
    [[nodiscard]] void* take_slot();
    [[noreturn]] static void throw_too_many(std::size_t limit);

    cerc::Cerc_utf16_reader& reader_;
    Tokeniser& tokeniser_;
    Txtdfc_text_view& view_;
    Txtdfc_token_pool& pool_;
    txt::Txt_text_store& text_; // its open text is the token's

    std::uint32_t type_ = txt::TXT_TOKEN_UNCLASSIFIED;
    Operation operation_ = Operation::finish;
    std::uint64_t token_start_ = 0;

    // The token's text at the checkpoint is what its first units are now.
    bool checkpointed_ = false;
    std::uint32_t checkpoint_type_ = txt::TXT_TOKEN_UNCLASSIFIED;
    std::size_t checkpoint_length_ = 0;
    std::uint64_t checkpoint_offset_ = 0;
};

template <typename Tokeniser>
inline void Txtdfc_view_builder<Tokeniser>::take_run() {
    const std::size_t bytes = tokeniser_.run(reader_.at_hand(), text_, type_, operation_);
    if (bytes == 0) return;
    if (operation_ == Operation::start) start_token(reader_.tell());
    reader_.skip(bytes);
}

template <typename Tokeniser>
void Txtdfc_view_builder<Tokeniser>::build(scl::Scl_status& status) {
    while (!status.has_failed()) {
        take_run();
        const std::uint64_t offset = reader_.tell();
        const char32_t character = reader_.read();
        if (character != cerc::Cerc_reader_base::END_OF_DATA) {
            do {
                tokeniser_.process(character, text_, type_, operation_);
            } while (on_character(offset, status));
        } else if (!status.has_failed()) {
            tokeniser_.breakpoint(text_, type_, operation_);
            if (on_end(offset, status)) return;
        }
    }
}

// True when the tokeniser wants the same character again.
template <typename Tokeniser>
bool Txtdfc_view_builder<Tokeniser>::on_character(std::uint64_t offset, scl::Scl_status& status) {
    switch (operation_) {
    case Operation::start:
        start_token(offset);
        return false;
    case Operation::checkpoint:
        set_checkpoint(offset);
        return true;
    case Operation::roll_back:
        roll_back(status);
        return false;
    case Operation::token:
        end_token(offset);
        return true;
    case Operation::trailer:
        end_trailer();
        return true;
    default:
        return false;
    }
}

// True when all is done.
template <typename Tokeniser>
bool Txtdfc_view_builder<Tokeniser>::on_end(std::uint64_t offset, scl::Scl_status& status) {
    switch (operation_) {
    case Operation::start:
    case Operation::go_on:
    case Operation::checkpoint:
        throw std::logic_error("Txtdfc_format_codec::create_text_view() - unexpected operation");
    case Operation::roll_back:
        roll_back(status);
        return false;
    case Operation::token:
        end_token(offset);
        return true;
    case Operation::trailer:
        end_trailer();
        return true;
    default:
        return operation_ == Operation::finish;
    }
}

template <typename Tokeniser>
inline void Txtdfc_view_builder<Tokeniser>::set_checkpoint(std::uint64_t offset) {
    checkpoint_length_ = text_.open_length();
    checkpoint_offset_ = offset;
    checkpoint_type_ = type_;
    checkpointed_ = true;
}

template <typename Tokeniser>
void Txtdfc_view_builder<Tokeniser>::roll_back(scl::Scl_status& status) {
    if (!checkpointed_) {
        throw std::logic_error(
            "Txtdfc_format_codec::create_text_view() - haven't been checkpointed");
    }
    text_.cut(checkpoint_length_);
    type_ = checkpoint_type_;
    reader_.seek(checkpoint_offset_, status);
    checkpointed_ = false;
}

template <typename Tokeniser>
inline void Txtdfc_view_builder<Tokeniser>::end_token(std::uint64_t offset) {
    make_token(text_.open_text(), type_, offset - token_start_);
    token_start_ = 0;
    checkpointed_ = false;
}

template <typename Tokeniser>
void Txtdfc_view_builder<Tokeniser>::end_trailer() {
    if (view_.cback() == nullptr) make_token(scl::W_EMPTY, txt::TXT_TOKEN_UNCLASSIFIED, 0);
    view_.cback()->trailer_text(text_.open_text());
    token_start_ = 0;
    checkpointed_ = false;
}

// At the token's start.
template <typename Tokeniser>
inline void Txtdfc_view_builder<Tokeniser>::make_token(std::u16string_view text, std::uint32_t type,
                                                       std::uint64_t length) {
    void* const slot = take_slot();
    const std::u16string_view kept = view_.keep(text);
    view_.add_content(*::new (slot) Txtdfc_physical_token(type, kept, view_, token_start_, length));
}

template <typename Tokeniser>
void Txtdfc_view_builder<Tokeniser>::throw_too_many(std::size_t limit) {
    std::array<char, 128> message{};
    (void)std::snprintf(message.data(), message.size(),
                        "Too many tokens are required to tokenise the text (over %lu).  "
                        "Tokenisation has failed.",
                        static_cast<unsigned long>(limit));
    throw std::runtime_error(message.data());
}

template <typename Tokeniser>
inline void* Txtdfc_view_builder<Tokeniser>::take_slot() {
    try {
        return pool_.take();
    } catch (const std::bad_alloc&) {
        throw_too_many(pool_.limit());
    }
}

} // namespace txtdfc
