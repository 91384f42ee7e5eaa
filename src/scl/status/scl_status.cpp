#include "scl/status/scl_status.hpp"

#include "scl/text/scl_string.hpp"

#include <algorithm>
#include <utility>

namespace scl {

Scl_wstring_status_arg::Scl_wstring_status_arg(std::string_view narrow) {
    scl_string_append(text_, narrow);
}

namespace {

// Statuses share arguments, so equal ones are often the same object.
bool same_argument(const Scl_status_arg* a, const Scl_status_arg* b) {
    if (a == b) return true;
    return a != nullptr && b != nullptr && a->text() == b->text();
}

} // namespace

Scl_status& Scl_status::operator=(Scl_status_code code) {
    clear();
    push(code);
    return *this;
}

void Scl_status::assign(Scl_status_code code, Scl_wstring_status_arg argument) {
    clear();
    push(code, std::move(argument));
}

void Scl_status::push(Scl_status_code code) {
    add(code, nullptr);
}

void Scl_status::push(Scl_status_code code, Scl_wstring_status_arg argument) {
    add(code, std::make_shared<const Scl_wstring_status_arg>(std::move(argument)));
}

// Its count is left out: what happened there many times happens here once.
void Scl_status::push_top(const Scl_status& other) {
    if (other.entries().empty()) return;
    const Entry& top = other.entries().back();
    add(top.code, top.argument);
}

void Scl_status::clear() {
    value_ = 0;
    holds_error_ = false;
    only_.reset();
    several_.clear();
}

bool Scl_status::contains_value(Scl_status_code code) const {
    return std::ranges::any_of(entries(),
                               [code](const Entry& entry) { return entry.code == code; });
}

void Scl_status::add(Scl_status_code code, std::shared_ptr<const Scl_status_arg> argument) {
    // The value is set last: if an allocation throws, the status is unchanged.
    Entry* const top = !several_.empty() ? &several_.back() : only_ ? &*only_ : nullptr;
    if (top == nullptr) {
        only_ = Entry{code, std::move(argument), 1};
    } else if (top->code == code && same_argument(top->argument.get(), argument.get())) {
        ++top->count;
    } else {
        // One code is by far the most frequent, and needs no memory. The vector takes over from the
        // second on.
        if (several_.empty()) several_.push_back(*only_);
        several_.push_back({code, std::move(argument), 1});
    }
    value_ = code;
    holds_error_ = holds_error_ || scl_is_error(code);
}

} // namespace scl
