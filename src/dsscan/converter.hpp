#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include <iconv.h>

namespace dsscan {

// Makes UTF-8 of texts in another encoding, by the system's converter. A byte that it cannot
// convert stays a character of its own: a byte that is no UTF-8, or U+FFFD where the byte would
// become a part of a character there.
class Converter {
public:
    // A name that the system does not know throws std::runtime_error.
    explicit Converter(const std::string& encoding);
    ~Converter();
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // Begins a text.
    void start();
    // Appends what the bytes come to; a few may be kept for the next call.
    void convert(std::span<const std::byte> bytes, std::string& to);
    // The text is whole.
    void finish(std::string& to);

private:
    void convert_waiting(std::string& to);
    void keep_byte(char byte, std::string& to);

    iconv_t handle_;
    std::size_t unit_;    // bytes of the encoding's smallest character
    std::string waiting_; // bytes not yet converted
    std::string kept_;    // the bytes kept last, when nothing was converted since
};

} // namespace dsscan
