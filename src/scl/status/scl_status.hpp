#pragma once

#include "scl/status/scl_status_codes.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default) // installed

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

// The outcome of a run or of one step. Every operation that can fail takes one by reference, as its
// last argument. It is a stack of entries; its value is the code of the top entry, the newest, or 0
// (success) when there is none.
class Scl_status {
public:
    struct Entry {
        Scl_status_code code;
        std::shared_ptr<const Scl_status_arg> argument; // null when the code came without one
        std::uint64_t count; // pushes in a row: a million equal warnings take one entry
    };

    Scl_status() = default;

    // Replaces all entries by this one. Allocates nothing, so that memory exhausted can
    // be told as well.
    Scl_status& operator=(Scl_status_code code);
    void assign(Scl_status_code code, Scl_wstring_status_arg argument);

    // Adds an entry on top. Memory exhausted is thrown (std::bad_alloc); the status stays as it
    // was.
    void push(Scl_status_code code);
    void push(Scl_status_code code, Scl_wstring_status_arg argument);
    // Adds the top entry of `other`, if it has one: what a local status of a sub-step came to.
    void push_top(const Scl_status& other);

    // Removes every entry, warnings too.
    void clear();

    [[nodiscard]] Scl_status_code value() const { return value_; }
    [[nodiscard]] bool operator==(Scl_status_code code) const { return value_ == code; }
    [[nodiscard]] bool contains_value(Scl_status_code code) const;

    // True when no entry is an error. Decides whether a run as a whole has succeeded.
    [[nodiscard]] bool ok() const { return !holds_error_; }
    // True when the top entry is an error. Loops test this.
    [[nodiscard]] bool has_failed() const { return scl_is_error(value_); }
    [[nodiscard]] bool is_warning() const { return scl_is_warning(value_); }

    // Oldest first.
    [[nodiscard]] std::span<const Entry> entries() const {
        if (!several_.empty()) return several_;
        return {only_ ? &*only_ : nullptr, only_ ? 1U : 0U};
    }

private:
    void add(Scl_status_code code, std::shared_ptr<const Scl_status_arg> argument);

    Scl_status_code value_ = 0;
    bool holds_error_ = false;
    std::optional<Entry> only_;  // while there is no more than one, which then needs no allocation
    std::vector<Entry> several_; // all of them from the second on
};

} // namespace scl

#pragma GCC visibility pop
