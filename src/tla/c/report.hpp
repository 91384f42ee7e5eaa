#pragma once

#include "scl/status/scl_status.hpp"
#include "tla/c/dsmake.h"

#include <cstdint>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tla::c {

// A text of a caller in C, of whom nothing is sure: null is empty.
[[nodiscard]] inline std::string_view view_of(const char* text) {
    return text != nullptr ? text : std::string_view();
}
[[nodiscard]] inline std::string_view view_of(const char* text, std::size_t size) {
    return text != nullptr ? std::string_view(text, size) : std::string_view();
}

// A fault of the caller, with one of the interface's own codes.
class Caller_fault : public std::runtime_error {
public:
    Caller_fault(std::uint32_t code, const std::string& what)
        : std::runtime_error(what), code_(code) {}
    [[nodiscard]] std::uint32_t code() const { return code_; }

private:
    std::uint32_t code_;
};

// What a handle tells of its last failure.
class Report {
public:
    explicit Report(std::string_view path) : path_(path) {}
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    // Says the same as another one from here on.
    void copy(const Report& other);

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::uint32_t code() const { return code_; }
    [[nodiscard]] const char* message() const { return last_message_; }

    // Does the work, and keeps what there is to say of a failure; false then. Nothing is thrown:
    // what calls may not know of exceptions.
    template <typename Work>
    bool guard(const Work& work) noexcept;

    static constexpr const char* NO_MEMORY = "There is not enough memory.";

private:
    void set(std::uint32_t code, const char* message);
    void tell(std::uint32_t code, std::string_view fault);
    void tell(const scl::Scl_status& status);

    std::string path_;
    std::string message_;
    const char* last_message_ = ""; // message_, or one that needs no memory
    std::uint32_t code_ = DSMAKE_OK;
};

template <typename Work>
bool Report::guard(const Work& work) noexcept {
    set(DSMAKE_NO_MEMORY, NO_MEMORY); // unless there is some to say more
    try {
        try {
            scl::Scl_status status;
            work(status);
            if (!status.has_failed()) {
                set(DSMAKE_OK, "");
                return true;
            }
            tell(status);
        } catch (const std::bad_alloc&) {
            return false;
        } catch (const Caller_fault& fault) {
            tell(fault.code(), fault.what());
        } catch (const std::runtime_error& fault) {
            // All that the library throws otherwise is of a value with too many tokens.
            tell(DSMAKE_TOO_LONG, fault.what());
        }
    } catch (...) { // there was no memory for a message
    }
    return false;
}

} // namespace tla::c
