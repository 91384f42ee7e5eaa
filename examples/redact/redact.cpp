// redact IN OUT [NOTE]: copies a UTF-8 text file with its long numbers made unreadable.
//
// Of every number of 12 or more digits only the last four digits stay. The note is added as a line
// at the end. OUT must not exist.

#include "scl/io/scl_buffers.hpp"
#include "scl/io/scl_file_buffer.hpp"
#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"
#include "scl/text/scl_unicode.hpp"
#include "scl/text/scl_utf.hpp"
#include "txt/txt_token_types.hpp"
#include "txtdfc/txtdfc_format_codec.hpp"

#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t LONG_DIGITS = 12;
constexpr std::size_t KEPT_DIGITS = 4;
constexpr std::string_view NOTE = "Long numbers were made unreadable.";

std::u16string wide(std::string_view narrow) {
    std::u16string text;
    scl::scl_stow(narrow, text);
    return text;
}

// How many visible characters stand before the digits of a number that may stay; 0 when all may.
// A number may hold separators ("1,234.5") and, at its end, letters.
std::size_t hidden_length(std::u16string_view number) {
    using Class = scl::Scl_unicode_code_point_type;
    std::vector<std::size_t> before_digit;
    std::size_t visible = 0;
    for (std::size_t at = 0; at < number.size();) {
        const Class type = scl::scl_code_point_type(scl::scl_utf16_next(number, at));
        if (type == Class::number) before_digit.push_back(visible);
        if (type != Class::attached) ++visible;
    }
    const std::size_t digits = before_digit.size();
    return digits < LONG_DIGITS ? 0 : before_digit[digits - KEPT_DIGITS];
}

// False when an edit was refused, and the number would stay readable.
bool redact_numbers(txtdfc::Txtdfc_format_codec& codec) {
    unsigned cursor = 0;
    txtdfc::Txtdfc_text_view* const view = codec.text_view(0, cursor);
    if (view == nullptr) return true;
    for (txt::Txt_physical_token* token = view->cfront(); token != nullptr; token = token->next()) {
        if (token->type() != txt::TXT_TOKEN_NUMBER) continue;
        const std::size_t hidden = hidden_length(token->text_entry());
        if (hidden != 0 && !token->redact(0, hidden)) return false;
    }
    return true;
}

std::string read_file(const char* name, scl::Scl_status& status) {
    const scl::Scl_file_buffer file(wide(name), scl::Scl_file_open::existing,
                                    scl::Scl_file_access::read, scl::SCL_FILE_PLAIN,
                                    scl::SCL_FILE_FRONT_TO_BACK, status);
    if (status.has_failed()) return {};
    std::string bytes(file.size(false, status), '\0');
    bytes.resize(file.read_at(0, std::as_writable_bytes(std::span(bytes)), status));
    return bytes;
}

void write_file(const char* name, const std::string& bytes, scl::Scl_status& status) {
    if (status.has_failed()) return;
    scl::Scl_file_buffer file(wide(name), scl::Scl_file_open::create,
                              scl::Scl_file_access::read_write, scl::SCL_FILE_PLAIN,
                              scl::SCL_FILE_FRONT_TO_BACK, status);
    if (status.has_failed()) return;
    file.write_at(0, std::as_bytes(std::span(bytes)), status);
    file.close(status);
}

std::string narrow(const scl::Scl_buffer& buffer) {
    const std::span<const std::byte> bytes = buffer.contents();
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    if (!bytes.empty()) std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
    std::string result;
    scl::scl_wtos(text, result, true);
    return result;
}

// Empty after a failure.
std::string redacted(std::string_view bytes, std::string_view note, scl::Scl_status& status) {
    const std::u16string text = wide(bytes);
    const scl::Scl_wstring_buffer content(text);
    txtdfc::Txtdfc_format_codec codec(nullptr, nullptr, nullptr, false);
    codec.set_modifiable(true);
    codec.attach(&content, status);
    if (status.has_failed()) return {};
    if (!redact_numbers(codec)) throw std::logic_error("edits refused");
    codec.insert_content_back(wide(note));
    const std::unique_ptr<scl::Scl_buffer> result = codec.compose(status);
    if (result == nullptr) return status.has_failed() ? std::string() : std::string(bytes);
    return narrow(*result);
}

int report(const scl::Scl_status& status) {
    if (!status.has_failed()) return 0;
    std::u16string text;
    std::string message;
    scl::Scl_status_lookup::to_string(status, text);
    scl::scl_wtos(text, message, true);
    std::fprintf(stderr, "redact: %s\n", message.c_str());
    return 1;
}

int run(std::span<char*> arguments) {
    if (arguments.size() < 3 || arguments.size() > 4) {
        std::fputs("usage: redact IN OUT [NOTE]\n", stderr);
        return 1;
    }
    scl::Scl_status status;
    const std::string bytes = read_file(arguments[1], status);
    if (status.has_failed()) return report(status);
    const std::string result =
        redacted(bytes, arguments.size() == 4 ? std::string_view(arguments[3]) : NOTE, status);
    write_file(arguments[2], result, status);
    return report(status);
}

} // namespace

int main(int argument_count, char** arguments) {
    try {
        return run({arguments, static_cast<std::size_t>(argument_count)});
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "redact: %s\n", exception.what());
        return 1;
    }
}
