#pragma once

#include "records/values/record_layout.hpp"
#include "scl/text/scl_text_span.hpp"
#include "txt/txt_token_types.hpp"
#include "txt/txt_token_walk.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <cstddef>
#include <span>

namespace tla {

// Puts a record together in memory of the caller's, field by field, in the layout of
// record_layout.hpp. A count stands before its values, whose number is known only behind them: so
// the record cannot simply be streamed.
class Tla_record_assembly {
public:
    explicit Tla_record_assembly(std::span<std::byte> room)
        : begin_(room.data()), at_(begin_), end_(begin_ + room.size()) {}

    // Most fields are one token and take this straight way.
    void add_field(scl::Scl_text_span<char> formatted) {
        txt::txt_is_short_run(formatted) ? add_run(formatted) : add_tokens(formatted);
    }
    void add_field(scl::Scl_text_span<char16_t> formatted) {
        txt::txt_is_run(formatted) ? add_run(formatted) : add_tokens(formatted);
    }
    // A field that is known to be a run, and so one token; of bytes, a short one
    // (txt::txt_is_short_run).
    template <typename Unit>
    [[gnu::flatten]] void add_run(scl::Scl_text_span<Unit> formatted) {
        add_value(txt::txt_token_value(formatted));
    }
    // A field of one token.
    void add_value(Tla_token_value value) {
        std::byte* const to = take(tla_field_size(1));
        if (to == nullptr) return;
        scl::scl_store_be(to, Tla_token_count{1});
        scl::scl_store_be(to + TLA_COUNT_BYTES, value);
    }
    void add_end() {
        if (std::byte* const to = take(TLA_RECORD_END_BYTES)) *to = std::byte{TLA_RECORD_END};
    }

    // Whether something did not fit. The record is of no use then.
    [[nodiscard]] bool is_full() const { return is_full_; }
    [[nodiscard]] std::span<const std::byte> record() const { return {begin_, at_}; }

private:
    // Apart, so that the straight way stays small enough to be inlined.
    template <typename Unit>
    [[gnu::noinline]] void add_tokens(scl::Scl_text_span<Unit> formatted) {
        std::byte* const count_at = take(TLA_COUNT_BYTES);
        const std::byte* const values = at_;
        txtdfc::txtdfc_each_token_value(formatted, [this](Tla_token_value value) {
            if (std::byte* const to = take(TLA_TOKEN_VALUE_BYTES)) scl::scl_store_be(to, value);
        });
        if (is_full_) return;
        const auto count = static_cast<std::size_t>(at_ - values) / TLA_TOKEN_VALUE_BYTES;
        scl::scl_store_be(count_at, static_cast<Tla_token_count>(count));
    }
    // Null when there is no room. A smaller piece may still fit behind; is_full() tells all the
    // same.
    std::byte* take(std::size_t bytes) {
        if (static_cast<std::size_t>(end_ - at_) < bytes) {
            is_full_ = true;
            return nullptr;
        }
        at_ += bytes;
        return at_ - bytes;
    }

    std::byte* begin_;
    std::byte* at_;
    std::byte* end_;
    bool is_full_ = false;
};

} // namespace tla
