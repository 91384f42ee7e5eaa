#include "driver/option_scanner.hpp"

#include <cerrno>

namespace driver {

// Begins behind the program's name.
int option_index = 1;
const char* next_character = nullptr;
const char* option_argument = nullptr;

namespace {

// In the list of letters: "k:h" means that k takes an argument and h none.
constexpr char TAKES_ARGUMENT = ':';

// Both, since the same command lines are used on systems where options begin with a slash. An
// absolute path is therefore no operand: it is scanned as options.
bool is_prefix(char character) {
    return character == '-' || character == '/';
}

// Sets errno as a function of the C library would; callers may check it.
char bad_option() {
    option_argument = nullptr;
    errno = EINVAL;
    return BAD_OPTION;
}

// Drops the rest of the argument: a scan that goes on begins with the next one.
char end_of_options() {
    option_argument = nullptr;
    next_character = nullptr;
    return NO_MORE_OPTIONS;
}

// The letter's argument stands behind it or in the next argument of the vector.
bool fetch_argument(int argument_count, const char* const* arguments) {
    ++option_index;
    option_argument = nullptr;
    if (*next_character != '\0') {
        option_argument = next_character;
    } else if (option_index < argument_count) {
        option_argument = arguments[option_index++];
    }
    next_character = nullptr;
    return option_argument != nullptr;
}

// The next letter may follow in the same argument; only behind the last one is the next argument
// fetched.
void step_over_plain_letter() {
    option_argument = nullptr;
    if (*next_character != '\0') return;
    ++option_index;
    next_character = nullptr;
}

// `next_character` stays inside an argument as long as that has letters, so that -uh is -u and -h.
char read_letter(int argument_count, const char* const* arguments, std::string_view letters) {
    const char letter = *next_character++;
    // A prefix alone, as in "-": it ends the options, and counts as one of them.
    if (letter == '\0') {
        ++option_index;
        return end_of_options();
    }
    const std::size_t index = letters.find(letter);
    if (letter == TAKES_ARGUMENT || index == std::string_view::npos) return bad_option();
    const bool takes_argument = letters.substr(index + 1).starts_with(TAKES_ARGUMENT);
    if (!takes_argument) {
        step_over_plain_letter();
    } else if (!fetch_argument(argument_count, arguments)) {
        return bad_option();
    }
    return letter;
}

} // namespace

char next_option(int argument_count, const char* const* arguments, std::string_view letters) {
    if (option_index >= argument_count) return end_of_options();
    if (next_character == nullptr) {
        const char* const argument = arguments[option_index];
        if (argument == nullptr) return end_of_options();
        // The classic scanner answers so to an argument that begins with its own sign for a fault.
        if (argument[0] == BAD_OPTION) return bad_option();
        if (!is_prefix(argument[0])) return end_of_options();
        // "--" and its relatives "//", "-/" and "/-".
        if (is_prefix(argument[1])) {
            ++option_index;
            return end_of_options();
        }
        next_character = argument + 1;
    }
    return read_letter(argument_count, arguments, letters);
}

} // namespace driver
