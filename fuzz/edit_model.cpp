#include "edit_model.hpp"

#include "scl/text/scl_string.hpp"
#include "scl/text/scl_unicode.hpp"

#include <algorithm>

namespace fuzz {

bool Edit_model::edit(std::size_t offset, std::size_t length, std::u16string_view text) {
    if (length == 0 && is_inside_range(offset)) return false;
    for (std::size_t at = offset; at != offset + length; ++at) {
        if (places_[at].range != 0 || (at != offset && places_[at].has_insert)) return false;
    }
    if (length == 0) {
        places_[offset].inserted += text;
        places_[offset].has_insert |= !text.empty();
    } else {
        ++ranges_;
        places_[offset].replacement = text;
    }
    for (std::size_t at = offset; at != offset + length; ++at) {
        places_[at].range = ranges_;
    }
    is_edited_ |= length != 0 || !text.empty();
    return true;
}

std::u16string Edit_model::text() const {
    std::u16string text;
    for (std::size_t at = 0; at < places_.size(); ++at) {
        const Place& place = places_[at];
        text += place.inserted + place.replacement;
        if (place.range == 0 && at + 1 != places_.size()) text += place.unit;
    }
    return text;
}

std::u16string lines_of(std::u16string_view text, std::u16string_view line_end) {
    std::u16string lines;
    bool has_ended = false;
    for (std::size_t at = 0; at < text.size();) {
        const std::u16string_view rest = text.substr(at);
        const bool is_crlf = rest.substr(0, 2) == u"\r\n";
        has_ended = is_crlf || rest[0] == u'\n' || (rest == u"\r" && has_ended);
        if (is_crlf || rest[0] == u'\n') {
            lines += line_end;
        } else if (rest != u"\r") {
            lines += rest.substr(0, rest[0] == u'\r' ? 2 : 1); // the one after a CR counts no more
        }
        at += is_crlf || rest[0] == u'\r' ? 2 : 1;
    }
    return has_ended ? lines : lines.append(line_end);
}

Redacted redaction_of(std::u16string_view text, std::size_t skip, std::size_t count) {
    using Class = scl::Scl_unicode_code_point_type;
    std::vector<std::size_t> starts; // of characters; the last one is the text's end
    std::vector<std::size_t> visible;
    for (std::size_t at = 0; at < text.size();) {
        starts.push_back(at);
        if (scl::scl_code_point_type(scl::scl_utf16_to_utf32_char(text, at)) != Class::attached) {
            visible.push_back(starts.size() - 1);
        }
    }
    const std::size_t end = starts.size();
    starts.push_back(text.size());
    const auto past = [&](std::size_t character) {
        const bool attaches = character != end &&
                              std::find(visible.begin(), visible.end(), character) == visible.end();
        return character + (attaches ? 1 : 0);
    };
    if (skip > visible.size()) return {text.size(), text.size(), 0};
    const std::size_t first = skip == 0 ? 0 : past(visible[skip - 1] + 1);
    const std::size_t left = visible.size() - skip;
    if (count > left) return {starts[first], text.size(), left};
    const std::size_t last = count == 0 ? first : visible[skip + count - 1] + 1;
    return {starts[first], starts[past(last)], count};
}

std::u16string safe_text_of(std::u16string_view text) {
    using Class = scl::Scl_unicode_code_point_type;
    std::u16string safe;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t character = scl::scl_utf16_to_utf32_char(text, at);
        const bool is_surrogate = character >= 0xD800 && character < 0xE000;
        if (scl::scl_code_point_type(character) != Class::attached && !is_surrogate) safe += u'*';
    }
    return safe.empty() && !text.empty() ? u"*" : safe;
}

} // namespace fuzz
