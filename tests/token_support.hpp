#pragma once

#include "scl/io/scl_buffers.hpp"
#include "scl/text/scl_utf.hpp"
#include "txtdfc/txtdfc_format_codec.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace test {

// A token as the tests compare it.
struct Piece {
    std::u16string text;
    std::u16string trailer;
    std::uint32_t type;
    std::uint64_t offset; // bytes

    bool operator==(const Piece&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Piece& piece) {
    return out << testing::PrintToString(piece.text) << testing::PrintToString(piece.trailer)
               << " type " << piece.type << " at " << piece.offset;
}

inline std::u16string utf16(const std::vector<char32_t>& code_points) {
    std::u16string text;
    for (const char32_t code_point : code_points) {
        char16_t units[2];
        text.append(units, scl::scl_utf16_put(units, code_point));
    }
    return text;
}

inline std::vector<Piece> pieces_of(const txt::Txt_text_view* view) {
    std::vector<Piece> pieces;
    if (view == nullptr) return pieces;
    for (const txt::Txt_physical_token* token = view->cfront(); token != nullptr;
         token = token->next()) {
        const auto& placed = dynamic_cast<const txtdfc::Txtdfc_physical_token&>(*token);
        pieces.push_back({std::u16string(token->text_entry()),
                          std::u16string(token->trailer_entry()), token->type(),
                          placed.content_offset()});
    }
    return pieces;
}

inline txt::Txt_physical_token& token_at(txt::Txt_text_view& view, int index) {
    txt::Txt_physical_token* token = view.cfront();
    for (; index > 0; --index) {
        token = token->next();
    }
    return *token;
}

// What is thrown, its kind in front.
inline std::string message_of(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::invalid_argument& error) {
        return std::string("argument: ") + error.what();
    } catch (const std::logic_error& error) {
        return std::string("logic: ") + error.what();
    } catch (const std::runtime_error& error) {
        return std::string("runtime: ") + error.what();
    }
    return "nothing thrown";
}

// The text that a buffer in memory holds.
inline std::u16string text_in(const scl::Scl_buffer& buffer) {
    const std::span<const std::byte> bytes = buffer.contents();
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    std::ranges::copy(bytes, std::as_writable_bytes(std::span(text)).begin());
    return text;
}

// A codec with what it needs around it; its content may be edited.
struct Bench {
    explicit Bench(bool view_of_empty = false, txt::Txt_text_table* table = nullptr,
                   std::size_t pool_blocks = txtdfc::Txtdfc_token_pool::MAX_BLOCKS)
        : pool(pool_blocks), codec(nullptr, table, &pool, view_of_empty) {
        codec.set_modifiable(true);
    }

    txtdfc::Txtdfc_text_view* view() {
        unsigned cursor = 0;
        return codec.text_view(0, cursor);
    }
    txtdfc::Txtdfc_text_view* attach(const scl::Scl_buffer& buffer) {
        codec.attach(&buffer, status);
        return view();
    }
    txtdfc::Txtdfc_text_view* attach(std::u16string text) {
        held = std::move(text);
        return attach(content.emplace(held));
    }
    // The edited text; the text itself when nothing is to be composed.
    std::u16string composed() {
        const std::unique_ptr<scl::Scl_buffer> made = codec.compose(status);
        EXPECT_EQ(status.value(), 0U);
        EXPECT_EQ(made != nullptr, codec.modified());
        return made != nullptr ? text_in(*made) : held;
    }

    std::u16string held;
    std::optional<scl::Scl_wstring_buffer> content;
    txtdfc::Txtdfc_token_pool pool;
    txtdfc::Txtdfc_format_codec codec;
    scl::Scl_status status;
};

inline std::vector<Piece> pieces_of(const std::u16string& text) {
    return pieces_of(Bench().attach(text));
}

} // namespace test
