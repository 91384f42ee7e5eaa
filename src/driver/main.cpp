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

// Allocates again, which unwinding has made possible.
int report_no_memory() {
    scl::Scl_status status;
    status.push(scl::SCL_STATUS_NO_MEMORY);
    std::u16string wide;
    scl::Scl_status_lookup::to_string(status, wide);
    std::string text;
    scl::scl_wtos(wide, text, true);
    return report_exception(text.c_str());
}

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
    driver::prepare_for_signals();
    std::exit(run({arguments, static_cast<std::size_t>(argument_count)}));
}
