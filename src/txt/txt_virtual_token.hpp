#pragma once

#include "txt/txt_physical_token.hpp"

#include <cstdint>
#include <string>
#include <string_view>

#pragma GCC visibility push(default) // installed

namespace txt {

// A token over a run of physical tokens, such as a name of several words. Its text is the run's
// text, with the trailers between its tokens; its trailer is that of the last token. The view owns
// it, and drops it when the first or last token of the run is unlinked.
class Txt_virtual_token final : public Txt_token {
public:
    // From `front` to `back`, in the order of the view. The caller chooses the type.
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

    // Counts visible characters over all tokens of the run; trailers do not count, and stay. The
    // first refused edit ends it, and earlier ones stay queued. The same holds for replace_text().
    [[nodiscard]] bool redact(std::size_t skip, std::size_t count) override;
    // One edit over the whole run: trailers between the tokens are overwritten too, with what
    // attaches to them, and so is what was unlinked inside the run.
    [[nodiscard]] bool make_safe() override;
    // The first token gets the new text, and the others are removed; the trailers between stay.
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
