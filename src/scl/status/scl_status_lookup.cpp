#include "scl/status/scl_status_lookup.hpp"

#include "message_files.hpp"
#include "scl/text/scl_string.hpp"

#include <algorithm>
#include <array>

namespace scl {

namespace {

constexpr std::string_view HEX_DIGITS = "0123456789ABCDEF";
constexpr std::string_view ARGUMENT_MARK = "%1"; // where a message shows its argument

// Eight digits, as the message files have them.
std::string hex(std::uint32_t code) {
    std::string text;
    for (int shift = 28; shift >= 0; shift -= 4) {
        text += HEX_DIGITS[(code >> shift) & 0xF];
    }
    return text;
}

// The message of a code: the rest of the line that starts with it; empty if no file has one. A
// linear search does: there are about thirty messages, and a run looks up a few.
std::string_view find_message(std::string_view code) {
    for (const impl::Message_file& file : impl::MESSAGE_FILES) {
        std::string_view rest = file.text;
        while (!rest.empty()) {
            const std::string_view line = rest.substr(0, rest.find('\n'));
            if (line.starts_with(code)) return line.substr(std::min(line.size(), code.size() + 1));
            rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        }
    }
    return {};
}

void append_entry(std::u16string& text, const Scl_status::Entry& entry) {
    const std::string code = hex(entry.code);
    scl_string_append(text, "0x" + code);
    const std::string_view message = find_message(code);
    if (!message.empty()) scl_string_append(text, ": ");
    // Only the message is searched for %1, never the argument, which may hold "%1" itself.
    const std::size_t mark = message.find(ARGUMENT_MARK);
    scl_string_append(text, message.substr(0, mark));
    if (mark != std::string_view::npos) {
        if (entry.argument != nullptr) text += scl_shown(entry.argument->text());
        scl_string_append(text, message.substr(mark + ARGUMENT_MARK.size()));
    }
    if (entry.count > 1) {
        scl_string_append(text, " (" + std::to_string(entry.count) + " times)");
    }
}

} // namespace

// The texts are part of the program, so that messages do not depend on files found at run time.
bool Scl_status_lookup::initialise_message_list(std::span<const std::string> file_names) {
    return std::ranges::all_of(file_names, [](const std::string& name) {
        return std::ranges::find(impl::MESSAGE_FILES, name, &impl::Message_file::name) !=
               impl::MESSAGE_FILES.end();
    });
}

std::string_view Scl_status_lookup::message(Scl_status_code code) {
    return find_message(hex(code)); // so short that the string holds it in itself
}

void Scl_status_lookup::to_string(const Scl_status& status, std::u16string& text) {
    text.clear();
    const std::span<const Scl_status::Entry> entries = status.entries();
    // The newest first: it says what failed, those below it say why.
    for (std::size_t i = entries.size(); i-- > 0;) {
        append_entry(text, entries[i]);
        if (i != 0) text += u'\n';
    }
}

} // namespace scl
