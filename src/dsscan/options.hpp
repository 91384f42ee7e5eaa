#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace dsscan {

// What is printed of the finds.
enum class Format { lines, json, counts, names, nothing };

struct Options {
    std::optional<std::uint64_t> least;        // -m
    std::optional<std::uint64_t> within = 100; // -w; none: no bound
    std::vector<std::u16string> keys;          // -k
    Format format = Format::lines;
    std::string encoding; // empty: UTF-8, or UTF-16 behind its mark
    std::string command;  // --pre; empty: none
    const char* data_set = nullptr;
    std::span<char*> texts;
};

// A command line that cannot be followed; the message has more than one line when the usage does.
class Usage_fault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// None when --help or --version was asked for, and answered. Throws Usage_fault.
[[nodiscard]] std::optional<Options> parse_options(int argument_count, char** arguments);

} // namespace dsscan
