#include "driver/driver.hpp"
#include "driver/interrupts.hpp"
#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Wide_arguments = std::vector<std::u16string>;

Wide_arguments decode_arguments(std::span<char*> arguments) {
    Wide_arguments wide;
    for (const char* const argument : arguments) {
        scl::scl_string_append(wide.emplace_back(), argument);
    }
    return wide;
}

// Arguments become UTF-16 and UTF-8 again, so that there is one path also for systems that pass
// UTF-16. Bytes that are no UTF-8 come out unchanged.
int run_driver(const Wide_arguments& wide) {
    std::vector<std::string> narrow(wide.size());
    std::vector<const char*> pointers;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        scl::scl_utf16_to_utf8(wide[i], narrow[i]);
        pointers.push_back(narrow[i].c_str());
    }
    const int count = static_cast<int>(pointers.size());
    pointers.push_back(nullptr);
    driver::Driver driver;
    return driver.run(count, pointers.data());
}

// Everything is unwound by now: the scratch file and the output are removed, their memory is free.
int report_exception(const char* message) {
    std::fprintf(stderr, "%s\n", message);
    return driver::EXIT_FAULT;
}

// Takes no memory: what filled it may be another program, and then it is as full as before.
int report_no_memory() {
    const std::string_view text = scl::Scl_status_lookup::message(scl::SCL_STATUS_NO_MEMORY);
    std::fprintf(stderr, "0x%08X: %.*s\n", scl::SCL_STATUS_NO_MEMORY, static_cast<int>(text.size()),
                 text.data());
    return driver::EXIT_FAULT;
}

// Where there is no memory from the start on, not even an exception can be thrown, and the C++
// library comes here at once. Nothing is done yet then.
[[noreturn]] void end_at_once() {
    if (std::current_exception() != nullptr) std::abort();
    std::_Exit(report_no_memory());
}

// Caught one by one: memory has a status code and a text of its own.
int run(std::span<char*> arguments) {
    try {
        return run_driver(decode_arguments(arguments));
    } catch (const std::bad_alloc&) {
        return report_no_memory();
    } catch (const std::exception& exception) {
        return report_exception(exception.what());
    } catch (...) {
        return report_exception("unknown exception");
    }
}

} // namespace

int main(int argument_count, char** arguments) {
    std::set_terminate(end_at_once);
    // Before anything is opened, so that a run can be interrupted at any moment.
    driver::prepare_for_signals();
    std::exit(run({arguments, static_cast<std::size_t>(argument_count)}));
}
