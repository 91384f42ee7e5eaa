#include "tla/c/report.hpp"

#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"

namespace tla::c {

// A message is either one's own text or a constant; only a text has to be copied.
void Report::copy(const Report& other) {
    message_ = other.message_;
    const bool is_own = other.last_message_ == other.message_.c_str();
    set(other.code_, is_own ? message_.c_str() : other.last_message_);
}

void Report::set(std::uint32_t code, const char* message) {
    code_ = code;
    last_message_ = message;
}

// As programs tell it: the file, then the fault.
void Report::tell(std::uint32_t code, std::string_view fault) {
    message_.assign(path_).append(": ").append(fault);
    set(code, message_.c_str());
}

void Report::tell(const scl::Scl_status& status) {
    std::u16string text;
    scl::Scl_status_lookup::to_string(status, text);
    std::string narrow;
    scl::scl_wtos(text, narrow, true);
    tell(status.value(), narrow);
}

} // namespace tla::c
