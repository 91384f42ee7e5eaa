// Makes a data set file of version 1, to test with: nobody writes that version any more.
//
//   make_version1 -k KEY ... -s SCHEMA -i INPUT -o OUTPUT
//
// Schema and input are those of dsmake, but texts are stored as they stand, and key fields may be
// empty. An existing output is replaced.

#include "driver/option_scanner.hpp"
#include "driver/schema.hpp"
#include "version1_file.hpp"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace {

struct Job {
    driver::Schema schema;
    std::vector<std::string> key_names;
    std::string input;
    std::string output;
};

Job read_options(int argument_count, const char* const* arguments) {
    Job job;
    for (;;) {
        const char letter = driver::next_option(argument_count, arguments, "k:s:i:o:");
        const std::string_view argument =
            driver::option_argument != nullptr ? driver::option_argument : "";
        if (letter == driver::NO_MORE_OPTIONS) return job;
        if (letter == 'k') {
            job.key_names.emplace_back(argument);
        } else if (letter == 'i') {
            job.input = argument;
        } else if (letter == 'o') {
            job.output = argument;
        } else if (letter != 's' || !driver::parse_schema(argument, job.schema)) {
            throw std::invalid_argument("-k KEY ... -s SCHEMA -i INPUT -o OUTPUT");
        }
    }
}

std::vector<std::string> split(std::string_view line) {
    std::vector<std::string> texts;
    for (std::size_t end = line.find('\t'); end != line.npos; end = line.find('\t')) {
        texts.emplace_back(line.substr(0, end));
        line.remove_prefix(end + 1);
    }
    texts.emplace_back(line);
    return texts;
}

tools::Rows read_rows(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + name);
    tools::Rows rows;
    for (std::string line; std::getline(in, line) && !in.eof();) {
        if (line.ends_with('\r')) line.pop_back();
        rows.push_back(split(line));
    }
    return rows;
}

void run(const Job& job) {
    std::ofstream out(job.output, std::ios::binary);
    out << tools::make_version1_file(job.schema.fields, job.key_names, read_rows(job.input));
    out.close();
    if (!out) throw std::runtime_error("cannot write " + job.output);
}

} // namespace

int main(int argument_count, char** arguments) {
    try {
        run(read_options(argument_count, arguments));
        return EXIT_SUCCESS;
    } catch (const std::exception& fault) {
        std::cerr << "make_version1: " << fault.what() << '\n';
        return EXIT_FAILURE;
    }
}
