#include "converter.hpp"

#include "scl/text/scl_string.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>
#include <stdexcept>

// The system's iconv stops at a byte that it cannot convert. The scan goes on: such a byte becomes
// a character of its own, as in a text of UTF-8. Tested by Dsscan.KeepsWhatCannotBeConverted.
namespace dsscan {

namespace {

constexpr std::size_t ROOM_BYTES = std::size_t{64} << 10;
constexpr std::string_view REPLACEMENT = "\xEF\xBF\xBD";

// The name in the message is the one that the user gave.
iconv_t open_converter(const char* to, const char* from) {
    // NOLINTNEXTLINE: the system's own sign of a failure
    const auto none = reinterpret_cast<iconv_t>(-1);
    const iconv_t handle = ::iconv_open(to, from);
    if (handle != none) return handle;
    if (errno == ENOMEM) throw std::bad_alloc();
    throw std::runtime_error("dsscan: --encoding " +
                             scl::scl_shown(from == std::string_view("UTF-8") ? to : from) +
                             ": iconv knows none of that name");
}

// How long the encoding is by one letter: what cannot be converted is passed over in such steps, so
// that what follows is read from its right place. A mark in front counts for both.
std::size_t bytes_of_letter(const std::string& encoding) {
    const iconv_t handle = open_converter(encoding.c_str(), "UTF-8");
    std::array<std::size_t, 2> sizes{};
    for (std::size_t letters = 1; letters <= sizes.size(); ++letters) {
        std::string text(letters, 'a');
        std::array<char, 64> room{};
        char* in = text.data();
        char* out = room.data();
        std::size_t in_left = text.size();
        std::size_t out_left = room.size();
        ::iconv(handle, nullptr, nullptr, nullptr, nullptr);
        ::iconv(handle, &in, &in_left, &out, &out_left);
        sizes[letters - 1] = room.size() - out_left;
    }
    ::iconv_close(handle);
    return sizes[1] > sizes[0] ? sizes[1] - sizes[0] : 1;
}

// Whether bytes that are to be none are UTF-8 when they stand side by side.
bool hold_a_character(const std::string& bytes) {
    std::u16string units;
    scl::scl_stow(bytes, units);
    return units.size() != bytes.size();
}

} // namespace

Converter::Converter(const std::string& encoding)
    : handle_(open_converter("UTF-8", encoding.c_str())), unit_(bytes_of_letter(encoding)) {}

Converter::~Converter() {
    ::iconv_close(handle_);
}

// Encodings with states, as ISO-2022, begin each text anew.
void Converter::start() {
    ::iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    waiting_.clear();
    kept_.clear();
}

// What a character was cut in waits for the rest of it.
void Converter::convert(std::span<const std::byte> bytes, std::string& to) {
    waiting_.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    convert_waiting(to);
}

// In rooms of a fixed size: how much longer a text becomes is not known before.
void Converter::convert_waiting(std::string& to) {
    char* in = waiting_.data();
    std::size_t left = waiting_.size();
    for (bool is_done = false; !is_done;) {
        const std::size_t before = to.size();
        to.resize(before + ROOM_BYTES);
        char* out = to.data() + before;
        std::size_t room = ROOM_BYTES;
        const std::size_t result = ::iconv(handle_, &in, &left, &out, &room);
        const int error = result == static_cast<std::size_t>(-1) ? errno : 0;
        to.resize(to.size() - room);
        if (to.size() > before) kept_.clear();
        // EILSEQ: bytes that are no character. EINVAL: half a character at the end, which waits.
        // E2BIG: the room is full.
        const bool is_bad = error == EILSEQ && left != 0;
        for (std::size_t byte = is_bad ? std::min(unit_, left) : 0; byte > 0; --byte, --left) {
            keep_byte(*in++, to);
        }
        // Else the end came inside of a character, or of all there is.
        is_done = !is_bad && error != E2BIG;
    }
    waiting_.erase(0, waiting_.size() - left);
}

// ASCII would be read as a character, and so would bytes that happen to be UTF-8 side by side;
// U+FFFD stands for those.
void Converter::keep_byte(char byte, std::string& to) {
    constexpr unsigned FIRST_STRAY = 0x80;
    kept_ += byte;
    if (static_cast<unsigned char>(byte) < FIRST_STRAY || hold_a_character(kept_)) {
        to += REPLACEMENT;
        kept_.clear();
    } else {
        to += byte;
    }
    constexpr std::size_t LONGEST_CHARACTER = 4;
    if (kept_.size() == LONGEST_CHARACTER) kept_.erase(0, 1);
}

// Half a character at the end stays as bytes.
void Converter::finish(std::string& to) {
    for (const char byte : waiting_) {
        keep_byte(byte, to);
    }
    waiting_.clear();
    std::array<char, 64> room{}; // for what an encoding with states has still to say
    char* out = room.data();
    std::size_t left = room.size();
    ::iconv(handle_, nullptr, nullptr, &out, &left);
    to.append(room.data(), room.size() - left);
}

} // namespace dsscan
