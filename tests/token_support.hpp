#pragma once

#include "scl/scl_buffer.hpp"
#include "scl/scl_utf.hpp"
#include "scl/scl_wstring_buffer.hpp"
#include "txtdfc/txtdfc_format_codec.hpp"

#include <cstdint>
#include <cstring>
#include <memory>
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

inline std::string escaped(const std::u16string& text) {
    std::string out;
    for (const char16_t unit : text) {
        if (unit >= ' ' && unit < 0x7F) {
            out += static_cast<char>(unit);
        } else {
            out += "<" + std::to_string(static_cast<unsigned>(unit)) + ">";
        }
    }
    return out;
}

inline std::ostream& operator<<(std::ostream& out, const Piece& piece) {
    return out << '"' << escaped(piece.text) << "\" \"" << escaped(piece.trailer) << "\" type "
               << (piece.type & 0xF) << " at " << piece.offset;
}

inline std::u16string utf16(const std::vector<char32_t>& code_points) {
    std::u16string text;
    for (const char32_t code_point : code_points) {
        char16_t units[2];
        text.append(units, scl::impl::scl_utf16_put(units, code_point));
    }
    return text;
}

// The bytes of a text that do not stand in memory as one piece, as those of a file; reading from
// `fails_from` on fails.
class Piecewise_buffer final : public scl::Scl_buffer {
public:
    explicit Piecewise_buffer(std::u16string text, std::uint64_t fails_from = ~std::uint64_t{0})
        : text_(std::move(text)), bytes_(text_), fails_from_(fails_from) {}

    [[nodiscard]] std::uint64_t size(bool in_units, scl::Scl_status& status) const override {
        return bytes_.size(in_units, status);
    }
    std::size_t read_at(std::uint64_t offset, std::span<std::byte> bytes,
                        scl::Scl_status& status) const override {
        if (offset + bytes.size() > fails_from_ && fails_from_ < text_.size() * 2) {
            status.push(scl::SCL_STATUS_READ_FAILED);
            return 0;
        }
        return bytes_.read_at(offset, bytes, status);
    }
    void mend() { fails_from_ = ~std::uint64_t{0}; }

private:
    std::u16string text_;
    scl::Scl_wstring_buffer bytes_;
    std::uint64_t fails_from_;
};

// The text that a buffer in memory holds.
inline std::u16string text_in(const scl::Scl_buffer& buffer) {
    const std::span<const std::byte> bytes = buffer.contents();
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    if (!bytes.empty()) std::memcpy(text.data(), bytes.data(), bytes.size());
    return text;
}

inline txtdfc::Txtdfc_text_view* view_of(txtdfc::Txtdfc_format_codec& codec) {
    unsigned cursor = 0;
    return codec.text_view(0, cursor);
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

inline std::vector<Piece> pieces_of(const scl::Scl_buffer& content) {
    txtdfc::Txtdfc_format_codec codec(nullptr, nullptr, nullptr, false);
    scl::Scl_status status;
    codec.attach(&content, status);
    if (!status.ok()) throw std::runtime_error("attach failed");
    return pieces_of(view_of(codec));
}

inline std::vector<Piece> pieces_of(const std::u16string& text) {
    return pieces_of(scl::Scl_wstring_buffer(text));
}

} // namespace test
