#pragma once

#include "txt/txt_physical_token.hpp"

#include <cstdint>
#include <string>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace txt {

// A token over a run of a view's physical tokens, such as a name of several words. Its text is that
// of the run with the trailers in it, its trailer that of the run's last token. The view owns it,
// and drops it when an end of its run is unlinked.
class Txt_virtual_token final : public Txt_token {
public:
    // From `front` to `back`, in the order of the view; the type is the caller's.
    Txt_virtual_token(std::uint32_t type, Txt_physical_token& front, Txt_physical_token& back)
        : front_(&front), back_(&back), type_(type) {}

    [[nodiscard]] std::uint32_t type() const override { return type_; }
    // The physical tokens before and after the run.
    [[nodiscard]] Txt_physical_token* previous() const override { return front_->previous(); }
    [[nodiscard]] Txt_physical_token* next() const override { return back_->next(); }
    bool link() override;
    bool unlink() override;
    [[nodiscard]] Txt_text_view& view() const override { return front_->view(); }
    [[nodiscard]] std::size_t position() const override { return front_->position(); }
    [[nodiscard]] std::u16string_view text_entry() const override;
    [[nodiscard]] std::u16string_view trailer_entry() const override;

    // Over the visible characters of all tokens of the run, one token after the other; trailers do
    // not count and stay. The first refusal ends it, with what was queued before still queued; so
    // for replace_text().
    [[nodiscard]] bool redact(std::size_t skip, std::size_t count) override;
    // As the text of the token holds the trailers in it, these go too: their white space is
    // overwritten, and what attaches to that is taken out. So does what was unlinked between the
    // ends of the run. One edit, queued whole or not at all.
    [[nodiscard]] bool make_safe() override;
    // The first token gets the new text, if any, and the others are removed then; trailers between
    // them stay.
    [[nodiscard]] bool replace_text(std::u16string_view text, std::u16string_view before,
                                    std::u16string_view after) override;

    [[nodiscard]] const Txt_physical_token& front() const override { return *front_; }
    [[nodiscard]] const Txt_physical_token& back() const override { return *back_; }

private:
    [[nodiscard]] bool remove_all_but_first();

    Txt_physical_token* front_;
    Txt_physical_token* back_;
    std::uint32_t type_;
};

} // namespace txt

#pragma GCC visibility pop
