#include "driver/console.hpp"

#include "driver/usage_text.hpp"
#include "scl/scl_status_lookup.hpp"
#include "scl/scl_string.hpp"

#include <array>
#include <cstdio>

namespace driver {

namespace {

void end_line() {
    std::putchar('\n');
    std::fflush(stdout);
}

} // namespace

void print_message(const std::string& text) {
    // Never as the format itself: a text may hold names, and those any '%'.
    std::fprintf(stderr, "%s", text.c_str());
    end_line();
}

void print_usage() {
    for (const std::string_view line : USAGE_TEXT) {
        std::fwrite(line.data(), 1, line.size(), stdout);
        end_line();
    }
}

void print_status(const scl::Scl_status& status) {
    const std::array names = {std::string(scl::SCL_PLAT_STATUS_FILE_NAME),
                              std::string(scl::SCL_UTIL_STATUS_FILE_NAME)};
    if (!scl::Scl_status_lookup::initialise_message_list(names)) return;
    std::u16string wide;
    scl::Scl_status_lookup::to_string(status, wide);
    std::string text;
    scl::scl_wtos(wide, text, true);
    print_message(text);
}

} // namespace driver
