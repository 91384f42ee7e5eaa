#pragma once

#include <string>
#include <string_view>

namespace scl {

// What a message text shows in its argument's place: a file name, a field name, an exception's
// message. An argument never changes once made, so statuses share it.
class Scl_status_arg {
public:
    Scl_status_arg() = default;
    Scl_status_arg(const Scl_status_arg&) = default;
    Scl_status_arg& operator=(const Scl_status_arg&) = delete;
    virtual ~Scl_status_arg() = default;

    [[nodiscard]] virtual std::u16string_view text() const = 0;
};

// Holds a copy of its text.
class Scl_wstring_status_arg final : public Scl_status_arg {
public:
    explicit Scl_wstring_status_arg(std::u16string_view text) : text_(text) {}
    explicit Scl_wstring_status_arg(std::string_view narrow);

    [[nodiscard]] std::u16string_view text() const override { return text_; }

private:
    std::u16string text_;
};

} // namespace scl
