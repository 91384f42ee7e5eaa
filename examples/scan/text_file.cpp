#include "text_file.hpp"

#include "scl/text/scl_normalize.hpp"
#include "scl/text/scl_string.hpp"
#include "scl/text/scl_utf.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace scan {

namespace {

constexpr char16_t BYTE_ORDER_MARK = 0xFEFF;
constexpr std::size_t FIRST_ROOM = std::size_t{64} << 10;

struct Closer {
    void operator()(std::FILE* file) const {
        if (file != stdin) std::fclose(file);
    }
};

// Not by the file's size: a pipe has none, and a file may grow.
std::string read_bytes(const std::string& name) {
    const std::unique_ptr<std::FILE, Closer> file(name == "-" ? stdin
                                                              : std::fopen(name.c_str(), "rb"));
    if (file == nullptr) throw File_fault(name, std::strerror(errno));
    std::string bytes;
    std::size_t size = 0;
    do {
        bytes.resize(std::max(FIRST_ROOM, size * 2));
        size += std::fread(bytes.data() + size, 1, bytes.size() - size, file.get());
        if (std::ferror(file.get()) != 0) throw File_fault(name, std::strerror(errno));
    } while (size == bytes.size());
    bytes.resize(size);
    return bytes;
}

// Bytes that are no UTF-8 have become lone surrogates.
std::size_t line_of_stray_byte(std::u16string_view text) {
    std::size_t line = 1;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = scl::scl_utf16_next(text, at);
        if (scl::scl_is_surrogate(c)) break;
        line += static_cast<std::size_t>(c == U'\n');
    }
    return line;
}

} // namespace

File_fault::File_fault(std::string_view name, std::string_view what)
    : std::runtime_error(shown(name) + ": " + std::string(what)) {}

std::string shown(std::u16string_view text) {
    std::string narrow;
    scl::scl_wtos(scl::scl_shown(text), narrow, true);
    return narrow;
}

std::string shown(std::string_view bytes) {
    std::u16string text;
    scl::scl_stow(bytes, text);
    return shown(text);
}

std::u16string read_text(const std::string& name) {
    std::u16string text;
    scl::scl_stow(read_bytes(name), text);
    if (!scl::scl_can_normalize(text)) {
        throw File_fault(name, "no UTF-8 in line " + std::to_string(line_of_stray_byte(text)));
    }
    text.shrink_to_fit(); // it was as large as if all were ASCII
    if (text.starts_with(BYTE_ORDER_MARK)) text.erase(0, 1);
    return text;
}

} // namespace scan
