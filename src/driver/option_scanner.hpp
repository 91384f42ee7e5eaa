#pragma once

#include <string_view>

namespace driver {

// Scans an argument vector like the classic getopt, with '-' and '/' both taken as prefixes. Its
// three values belong to the process.

// The index of the next argument to look at.
extern int option_index;
// The next letter of the argument being read; null when the next argument must be fetched.
extern const char* next_character;
// The argument of the option returned last; null when it has none.
extern const char* option_argument;

inline constexpr char NO_MORE_OPTIONS = '\0';
inline constexpr char BAD_OPTION = '?';

// The next option's letter, as typed. A letter of `letters` that is followed by ':' takes an
// argument: the rest of its own argument, or the next one. BAD_OPTION, with errno EINVAL, for a
// letter that is not known or lacks its argument; NO_MORE_OPTIONS at the end, before the first
// argument that is no option, and after "--".
[[nodiscard]] char next_option(int argument_count, const char* const* arguments,
                               std::string_view letters);

} // namespace driver
