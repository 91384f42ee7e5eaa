#include "options.hpp"

#include "scl/text/scl_string.hpp"

#include <array>
#include <charconv>
#include <cstdio>
#include <limits>
#include <string_view>

#include <getopt.h>

// The options and what they are checked for, by the system's getopt_long. Tested by
// Dsscan.TellsFaultsOfTheCommandLine.
namespace dsscan {

namespace {

constexpr const char* SYNOPSIS =
    "usage: dsscan [-m N] [-w N|all] [-k KEY]... [--json|-c|-l|-q] [--encoding NAME]\n"
    "              [--pre COMMAND] DATASET TEXT...\n";

constexpr const char* DESCRIPTION = R"(
Says which records of a data set file occur in texts. A TEXT is a file, a folder (all plain files in
it and below) or - for standard input.

  -m, --least N        a record must share N fields with the text, a key among them (2; 1 where
                       records have one field)
  -w, --within N|all   and the others stand within N words of the key (100), or anywhere
  -k, --key KEY        look for this field first; instead of the keys of the file
      --json           print each find as an object of JSON on a line
  -c, --count          print how many records each text holds
  -l, --files-with-matches
                       print the names of texts that hold any
  -q, --quiet          print nothing, and end at the first find
      --encoding NAME  the encoding of the texts, as iconv names it
      --pre COMMAND    scan what 'COMMAND TEXT' writes in place of TEXT
  -h, --help           show this text
      --version        show the version

The exit status is 0 when something was found, 1 when nothing was, 2 after a fault.
)";

// Those without a letter, beyond all letters.
enum Long_option { JSON = 256, ENCODING, PRE, VERSION };

constexpr std::array<option, 12> LONG_OPTIONS{{{"least", required_argument, nullptr, 'm'},
                                               {"within", required_argument, nullptr, 'w'},
                                               {"key", required_argument, nullptr, 'k'},
                                               {"json", no_argument, nullptr, JSON},
                                               {"count", no_argument, nullptr, 'c'},
                                               {"files-with-matches", no_argument, nullptr, 'l'},
                                               {"quiet", no_argument, nullptr, 'q'},
                                               {"encoding", required_argument, nullptr, ENCODING},
                                               {"pre", required_argument, nullptr, PRE},
                                               {"help", no_argument, nullptr, 'h'},
                                               {"version", no_argument, nullptr, VERSION},
                                               {}}};

[[noreturn]] void fail_with_usage(const std::string& fault = {}) {
    const std::string first = fault.empty() ? "" : "dsscan: " + fault + '\n';
    throw Usage_fault(first + SYNOPSIS + "Try 'dsscan --help'.");
}

// More than fits is the largest there is: more than any text has words, and records fields.
std::uint64_t number_of(char letter, std::string_view argument) {
    std::uint64_t number = 0;
    const char* const end = argument.data() + argument.size();
    const auto [read, error] = std::from_chars(argument.data(), end, number);
    if (read != end || error == std::errc::invalid_argument) {
        fail_with_usage(std::string("-") + letter + ": no number: " + scl::scl_shown(argument));
    }
    return error == std::errc() ? number : std::numeric_limits<std::uint64_t>::max();
}

// The same one twice does no harm.
void set_format(Options& options, Format format) {
    if (options.format != Format::lines && options.format != format) {
        fail_with_usage("only one of --json, -c, -l and -q");
    }
    options.format = format;
}

// A variable of a script that is not set gives an empty argument.
std::string not_empty(const char* option, const char* argument) {
    if (*argument == '\0') fail_with_usage(std::string(option) + ": an empty name");
    return argument;
}

void take_option(Options& options, int letter) {
    switch (letter) {
    case 'm':
        options.least = number_of('m', optarg);
        if (options.least == 0) fail_with_usage("-m 0: it takes one field at least, the key");
        return;
    case 'w':
        options.within = optarg == std::string_view("all") ? std::nullopt
                                                           : std::optional(number_of('w', optarg));
        return;
    case 'k':
        scl::scl_stow(optarg, options.keys.emplace_back());
        return;
    case JSON:
        return set_format(options, Format::json);
    case 'c':
        return set_format(options, Format::counts);
    case 'l':
        return set_format(options, Format::names);
    case 'q':
        return set_format(options, Format::nothing);
    case ENCODING:
        options.encoding = not_empty("--encoding", optarg);
        return;
    case PRE:
        options.command = not_empty("--pre", optarg);
        return;
    default:
        fail_with_usage();
    }
}

} // namespace

std::optional<Options> parse_options(int argument_count, char** arguments) {
    Options options;
    for (;;) {
        // Options and texts may stand in any order, as people expect of programs on this system.
        const int letter =
            getopt_long(argument_count, arguments, "m:w:k:clqh", LONG_OPTIONS.data(), nullptr);
        if (letter == -1) break;
        if (letter == 'h' || letter == VERSION) {
            std::printf("%s%s", letter == 'h' ? SYNOPSIS : "dsscan " DSMAKE_VERSION "\n",
                        letter == 'h' ? DESCRIPTION : "");
            return std::nullopt;
        }
        take_option(options, letter);
    }
    const std::span<char*> operands(arguments + optind, arguments + argument_count);
    if (operands.size() < 2) fail_with_usage();
    options.data_set = operands.front();
    options.texts = operands.subspan(1);
    return options;
}

} // namespace dsscan
