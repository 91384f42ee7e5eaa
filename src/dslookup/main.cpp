// dslookup: looks values up in a data set file. USAGE says how it is called.

#include "answers.hpp"

#include <array>
#include <cstdio>
#include <exception>
#include <new>
#include <optional>
#include <span>

#include <getopt.h>

namespace dslookup {

namespace {

// As grep's, which scripts know.
enum Exit_status { ALL_FOUND = 0, NOT_FOUND = 1, FAULT = 2 };

constexpr const char* USAGE = R"(usage: dslookup FILE [KEY [VALUE]]

Says how many records of a data set file have the value in the key field, and at which offsets they
stand in the file. Without VALUE, the values are the lines of standard input, each of which gives a
line. Without KEY, it checks the file and says what is in it. White space around a value does not
count.

  -h, --help     show this text
      --version  show the version

The exit status is 0 when every value was found, 1 when one was not, 2 after a fault.
)";

// The exit status when the options leave nothing else to do.
std::optional<Exit_status> take_options(int argument_count, char** arguments) {
    static constexpr std::array<option, 3> OPTIONS{
        {{"help", no_argument, nullptr, 'h'}, {"version", no_argument, nullptr, 'v'}, {}}};
    // Options end at the first operand ('+'): a value may begin with a hyphen.
    switch (getopt_long(argument_count, arguments, "+h", OPTIONS.data(), nullptr)) {
    case -1:
        return std::nullopt;
    case 'h':
        std::fputs(USAGE, stdout);
        break;
    case 'v':
        std::puts("dslookup " DSMAKE_VERSION);
        break;
    default:
        std::fputs("Try 'dslookup --help'.\n", stderr);
        return FAULT;
    }
    finish_output();
    return ALL_FOUND;
}

Exit_status look_up(std::span<char*> operands) {
    Data_set data_set(operands[0]);
    bool all_found = true;
    if (operands.size() == 1) {
        // Nothing is looked up, so nothing can be missing.
        print_contents(data_set);
    } else if (operands.size() == 2) {
        all_found = print_answers_to_lines(data_set, operands[1]);
    } else {
        all_found = print_answer(data_set, operands[1], operands[2]);
    }
    finish_output();
    return all_found ? ALL_FOUND : NOT_FOUND;
}

Exit_status run(int argument_count, char** arguments) {
    if (const auto status = take_options(argument_count, arguments)) return *status;
    const std::span<char*> operands(arguments + optind, arguments + argument_count);
    if (operands.empty() || operands.size() > 3) {
        std::fputs("usage: dslookup FILE [KEY [VALUE]]\nTry 'dslookup --help'.\n", stderr);
        return FAULT;
    }
    return look_up(operands);
}

} // namespace

} // namespace dslookup

int main(int argument_count, char** arguments) {
    try {
        return dslookup::run(argument_count, arguments);
    } catch (const std::bad_alloc&) {
        std::fputs("dslookup: There is not enough memory.\n", stderr);
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "%s\n", fault.what());
    }
    return dslookup::FAULT;
}
