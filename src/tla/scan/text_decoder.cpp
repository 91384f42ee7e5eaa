#include "tla/scan/text_decoder.hpp"

#include "scl/text/scl_string.hpp"
#include "scl/text/scl_utf.hpp"

#include <algorithm>
#include <utility>

// The first bytes decide on the encoding, so they are kept until there are enough, however small
// the pieces are that they come in. Tested by Scan.ReadsUtf16BehindItsMark and Scan.DropsOneMark.
namespace tla {

namespace {

constexpr std::array UTF8_MARK = {std::byte{0xEF}, std::byte{0xBB}, std::byte{0xBF}};
constexpr std::array UTF16_LE_MARK = {std::byte{0xFF}, std::byte{0xFE}};
constexpr std::array UTF16_BE_MARK = {std::byte{0xFE}, std::byte{0xFF}};

template <std::size_t Size>
bool begins_with(std::span<const std::byte> bytes, const std::array<std::byte, Size>& mark) {
    return bytes.size() >= Size && std::ranges::equal(bytes.first(Size), mark);
}

} // namespace

void Text_decoder::start(bool is_converted) {
    encoding_ = Encoding::unknown;
    is_converted_ = is_converted;
    bytes_in_front_ = 0;
    front_size_ = 0;
    units_.clear();
    has_half_ = false;
}

void Text_decoder::decode(std::span<const std::byte> bytes, std::string& to) {
    if (encoding_ == Encoding::unknown) {
        const std::size_t taken = std::min(bytes.size(), front_.size() - front_size_);
        std::copy_n(bytes.begin(), taken,
                    front_.begin() + static_cast<std::ptrdiff_t>(front_size_));
        front_size_ += taken;
        bytes = bytes.subspan(taken);
        // Three bytes decide: the longest mark.
        if (front_size_ == front_.size()) settle(front_, to);
    }
    if (!bytes.empty()) pass(bytes, to);
}

// A mark of UTF-8 counts for the places that are told, as it is in the file; one that a converter
// wrote is not.
void Text_decoder::settle(std::span<const std::byte> front, std::string& to) {
    encoding_ = Encoding::utf8;
    if (!is_converted_ && begins_with(front, UTF16_LE_MARK)) {
        encoding_ = Encoding::utf16_le;
        front = front.subspan(UTF16_LE_MARK.size());
    } else if (!is_converted_ && begins_with(front, UTF16_BE_MARK)) {
        encoding_ = Encoding::utf16_be;
        front = front.subspan(UTF16_BE_MARK.size());
    } else if (begins_with(front, UTF8_MARK)) {
        front = front.subspan(UTF8_MARK.size());
        if (!is_converted_) bytes_in_front_ = UTF8_MARK.size();
    }
    pass(front, to);
}

// Bytes that are no UTF-8 go on as they are: whoever reads them makes characters of their own.
void Text_decoder::pass(std::span<const std::byte> bytes, std::string& to) {
    if (encoding_ == Encoding::utf8) {
        to.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    } else {
        decode_units(bytes, to);
    }
}

// The first half of a pair waits for the second.
void Text_decoder::decode_units(std::span<const std::byte> bytes, std::string& to) {
    for (const std::byte byte : bytes) {
        has_half_ = !has_half_;
        if (has_half_) {
            half_ = byte;
            continue;
        }
        const bool is_little = encoding_ == Encoding::utf16_le;
        const auto low = std::to_integer<unsigned>(is_little ? half_ : byte);
        const auto high = std::to_integer<unsigned>(is_little ? byte : half_);
        units_ += static_cast<char16_t>(high << 8U | low);
    }
    // A lead surrogate at the end of a piece: its partner may be in the next one.
    const bool waits = !units_.empty() && scl::scl_is_lead(units_.back());
    const std::u16string_view ready =
        std::u16string_view(units_).substr(0, units_.size() - (waits ? 1 : 0));
    scl::scl_string_append(to, ready);
    units_.erase(0, ready.size());
}

// Half a unit at the end is left out.
void Text_decoder::finish(std::string& to) {
    if (encoding_ == Encoding::unknown) settle(std::span(front_).first(front_size_), to);
    scl::scl_string_append(to, units_);
    units_.clear();
}

} // namespace tla
