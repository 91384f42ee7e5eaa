#include "driver/console.hpp"

#include "scl/status/scl_status_lookup.hpp"
#include "scl/text/scl_string.hpp"

#include <array>
#include <cstdio>
#include <string_view>

namespace driver {

// Fixed text: scripts compare it. A line an element, since each line is flushed by itself.
inline constexpr std::string_view USAGE_TEXT[] = {
    "",
    "dsmake 22.08.00",
    "",
    "Usage:",
    "",
    "\tdsmake -k <key_name>  (-k <key_name>)* -s <schema> -i <input_file> -o <output_file>",
    "\tdsmake -u -i <input_file> -o <output_file>",
    "\tdsmake -h",
    "",
    "Where:",
    "",
    "\t<key_name>\tis the field name of one of the key field. This must be specified in <schema>",
    "",
    "\t<schema>\tis a semi-colon separated list of comma separated pairs. Where the first value",
    "\t\t\tin the pair is the field name in the schema and the second is the formatter type name",
    "\t\t\tto be used to format that field. E.g:",
    "\t\t\tFirstName,Simple;Surname,SimpleNC; CardNum,CCNUMBER",
    "",
    "\t\t\tNOTE: The order the fields are specified in the <schema> MUST match the order they are",
    "\t\t\tin the input file. There are no column headers in the input file. The only way it can",
    "\t\t\tidentify the fields in the input is from their order in the specified <schema>.",
    "",
    "\t<input_file>\tis the relative filename of the input file",
    "",
    "\t<output_file>\tis the relative filename of the output file. If the output file already",
    "\t\t\texists dsmake will fail",
    "",
    "\t-u  means upgrade the file to the latest version.",
    "",
    "\t-h  means just display usage message.",
    "",
};

namespace {

// Flushes, since standard error is not buffered: both then keep their order on a terminal.
void end_line() {
    std::putchar('\n');
    std::fflush(stdout);
}

} // namespace

// Text and line end go to different streams, and existing callers depend on it: with standard
// output redirected, the messages of a run stand on one line of standard error.
void print_message(const std::string& text) {
    // Not as the format itself: names in the text may contain '%'.
    std::fprintf(stderr, "%s", text.c_str());
    end_line();
}

void print_usage() {
    for (const std::string_view line : USAGE_TEXT) {
        std::fwrite(line.data(), 1, line.size(), stdout);
        end_line();
    }
}

// Without its message texts a status would be numbers only: then nothing is printed.
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
