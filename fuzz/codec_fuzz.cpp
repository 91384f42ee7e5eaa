// Edits a text through the codec and, the slow way, in a model of it; both must agree.
//
// The input: a byte of options, a byte that counts operations, four bytes for each, the content.

#include "../tests/piecewise_buffer.hpp"
#include "edit_model.hpp"
#include "scl/io/scl_buffers.hpp"
#include "txtdfc/txtdfc_format_codec.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Bytes = std::span<const std::uint8_t>;

void check(bool holds) {
    if (!holds) throw std::logic_error("the codec and its model differ");
}

// Units that a codec, a tokeniser or a line end may care about.
constexpr std::u16string_view UNITS =
    u"ab1_.,':;-+!\" \t\u00A0\n\r\n\r\u0301\u0308\u200D\u231A\u05D0\u30AB\U00010428\uFEFF\U0001F1E6"
    u"\U000E0100xX9";

std::u16string text_of(Bytes bytes, bool is_raw) {
    std::u16string text;
    if (is_raw) {
        text.resize(bytes.size() / 2);
        if (!text.empty()) std::memcpy(text.data(), bytes.data(), text.size() * 2);
    } else {
        for (const std::uint8_t byte : bytes) {
            text += UNITS[byte % UNITS.size()];
        }
    }
    return text;
}

// A codec and the model of what it holds, side by side.
class Pair {
public:
    Pair(const std::u16string& content, const scl::Scl_buffer& buffer)
        : content_(content), model_(content), codec_(nullptr, nullptr, nullptr, true) {
        codec_.attach(&buffer, status_);
        check(status_.value() == 0);
        codec_.set_modifiable(true);
        start_ = content.starts_with(u'\uFEFF') ? 1 : 0;
        unsigned cursor = 0;
        view_ = codec_.text_view(0, cursor);
        check_tokens();
        check_values();
    }

    // A kind, a token, and two numbers.
    void operate(std::span<const std::uint8_t, 4> operation) {
        const std::uint8_t kind = operation[0] % 9;
        const std::u16string note = text_of(operation.last(3), false);
        if (kind >= 5 && kind != 8) return transact(kind);
        if (kind == 3) return check(codec_.insert_content_front(note) == insert_front(note));
        if (kind == 4) return check(codec_.insert_content_back(note) == insert_back(note));
        if (tokens_.empty()) return;
        const std::size_t place = operation[1] % tokens_.size();
        txtdfc::Txtdfc_physical_token& token = *tokens_[place];
        if (kind == 0) check(token.remove() == edit(token, 0, token.text_entry().size(), u""));
        if (kind == 1) replace(token, note.substr(0, operation[1] % 4), operation[2], operation[3]);
        if (kind == 2) redact(token, operation[2] % 8, operation[3] % 8);
        if (kind == 8)
            make_safe(token, *tokens_[std::max<std::size_t>(place, operation[2] % tokens_.size())]);
    }

    void finish() {
        if (codec_.in_transaction()) transact(6);
        const std::unique_ptr<scl::Scl_buffer> composed = codec_.compose(status_);
        check(status_.value() == 0);
        check(codec_.modified() == model_.is_edited());
        check((composed != nullptr) == model_.is_edited());
        if (composed == nullptr) return;
        const std::u16string expected = model_.text();
        const std::span<const std::byte> bytes = composed->contents();
        check(bytes.size() == expected.size() * 2);
        check(bytes.empty() || std::memcmp(bytes.data(), expected.data(), bytes.size()) == 0);
    }

private:
    // Every unit is in one token's text or trailer.
    void check_tokens() {
        std::size_t at = start_;
        for (auto* token = view_->cfront(); token != nullptr; token = token->next()) {
            auto& placed = dynamic_cast<txtdfc::Txtdfc_physical_token&>(*token);
            tokens_.push_back(&placed);
            check(placed.content_offset() == at * 2);
            check(placed.content_length() == token->text_entry().size() * 2 % 0x10000);
            at += token->formatted_text_length();
        }
        check(at == content_.size());
        check(view_->create_string() == content_.substr(start_));
    }

    void check_values() {
        std::vector<std::uint64_t> values = {99};
        check(txtdfc::txtdfc_token_values(content_, values) == (start_ != content_.size()));
        check(std::ranges::equal(values, tokens_, {}, {}, [](const auto* token) {
            return token->crc(txt::Txt_text_form::whole);
        }));
        check_bytes(values);
    }

    // ASCII has the same values as the bytes it comes in.
    void check_bytes(const std::vector<std::uint64_t>& expected) {
        const auto is_ascii = [](char16_t unit) { return unit < 0x80; };
        if (!std::ranges::all_of(content_, is_ascii)) return;
        std::string bytes(content_.begin(), content_.end());
        bytes.append(scl::SCL_BLOCK_BYTES, 'x');
        std::vector<std::uint64_t> values;
        txtdfc::txtdfc_each_token_value(
            scl::Scl_text_span<char>{bytes.data(), bytes.data() + content_.size()},
            [&values](std::uint64_t value) { values.push_back(value); });
        check(values == expected);
    }

    bool edit(const txtdfc::Txtdfc_physical_token& token, std::size_t begin, std::size_t length,
              std::u16string_view text) {
        return model_.edit(token.content_offset() / 2 + begin, length, text);
    }

    void replace(txtdfc::Txtdfc_physical_token& token, const std::u16string& text, int before,
                 int after) {
        const std::u16string front = before % 3 == 0 ? u"<<" : u"";
        const std::u16string back = after % 3 == 0 ? u">>" : u"";
        const std::size_t length = token.text_entry().size();
        const bool expected = !(text.empty() && front.empty() && back.empty()) &&
                              (front.empty() || edit(token, 0, 0, front)) &&
                              (text.empty() || edit(token, 0, length, text)) &&
                              (back.empty() || edit(token, length, 0, back));
        check(token.replace_text(text, front, back) == expected);
    }

    void redact(txtdfc::Txtdfc_physical_token& token, std::size_t skip, std::size_t count) {
        const std::size_t wanted = count != 0 ? count : token.length(txt::Txt_text_form::visible);
        const auto [begin, end, found] = fuzz::redaction_of(token.text_entry(), skip, wanted);
        const bool expected =
            begin == end || edit(token, begin, end - begin, std::u16string(found, u'*'));
        check(token.redact(skip, count) == expected);
    }

    // Of one token, or of a run in which a second one ends.
    void make_safe(txtdfc::Txtdfc_physical_token& front, txtdfc::Txtdfc_physical_token& back) {
        const std::size_t begin = front.content_offset() / 2;
        const std::size_t end = back.content_offset() / 2 + back.text_entry().size();
        const std::u16string text = content_.substr(begin, end - begin);
        txt::Txt_token& token = &front == &back
                                    ? static_cast<txt::Txt_token&>(front)
                                    : view_->add_virtual_token(txt::TXT_TOKEN_WORD, front, back);
        check(token.text_entry() == text);
        check(token.make_safe() == model_.edit(begin, text.size(), fuzz::safe_text_of(text)));
    }

    [[nodiscard]] std::u16string_view line_end() const {
        const std::size_t last = content_.rfind(u'\n');
        const bool is_lf =
            last != std::u16string::npos && (last == 0 || content_[last - 1] != '\r');
        return is_lf ? u"\n" : u"\r\n";
    }
    bool insert_front(const std::u16string& note) {
        return model_.edit(start_, 0, fuzz::lines_of(note, line_end()));
    }
    bool insert_back(const std::u16string& note) {
        std::u16string lines = fuzz::lines_of(note, line_end());
        if (content_.size() != start_ && content_.back() != u'\n') lines.insert(0, line_end());
        return model_.edit(content_.size(), 0, lines);
    }

    void transact(std::uint8_t kind) {
        const bool is_open = saved_.has_value();
        if (kind == 5) {
            check(codec_.begin_transaction() == !is_open);
            if (!is_open) saved_ = model_;
        } else if (kind == 6) {
            check(codec_.commit_transaction() == is_open);
            saved_.reset();
        } else {
            check(codec_.rollback_transaction() == is_open);
            if (is_open) model_ = *saved_;
            saved_.reset();
        }
        check(codec_.in_transaction() == saved_.has_value());
    }

    const std::u16string& content_;
    std::size_t start_ = 0;
    fuzz::Edit_model model_;
    std::optional<fuzz::Edit_model> saved_; // as it was when the transaction began
    scl::Scl_status status_;
    txtdfc::Txtdfc_format_codec codec_;
    txtdfc::Txtdfc_text_view* view_ = nullptr;
    std::vector<txtdfc::Txtdfc_physical_token*> tokens_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const Bytes input(data, size);
    const std::size_t count = std::min<std::size_t>(input[1] % 64, (size - 2) / 4);
    const Bytes operations = input.subspan(2, 4 * count);
    const std::u16string content = text_of(input.subspan(2 + 4 * count), (input[0] & 1U) != 0);
    const scl::Scl_wstring_buffer in_memory(content);
    const test::Piecewise_buffer file_like(in_memory);
    const bool is_file = (input[0] & 2U) != 0;
    Pair pair(content, is_file ? static_cast<const scl::Scl_buffer&>(file_like) : in_memory);
    for (std::size_t i = 0; i < count; ++i) {
        pair.operate(operations.subspan(4 * i).first<4>());
    }
    pair.finish();
    return 0;
}
