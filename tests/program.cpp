#include "program.hpp"

#include <cstdlib>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

namespace {

constexpr const char* PROGRAM = " program"; // behind the folder's name, a link

std::string quoted(const std::string& word) {
    return " '" + word + "'"; // no test has a quotation mark in an argument
}

} // namespace

Workplace::Workplace() {
    std::string name = std::filesystem::temp_directory_path() / "dsmake-test-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = name;
    // As in a folder of any name: who forgets to quote it learns so here and not there.
    std::error_code none; // without a program
    std::filesystem::create_symlink(DSMAKE_PROGRAM, folder_.string() + PROGRAM, none);
}

Workplace::~Workplace() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
    std::filesystem::remove(folder_.string() + PROGRAM, ignored);
    std::filesystem::remove(folder_.string() + ".out", ignored);
    std::filesystem::remove(folder_.string() + ".err", ignored);
}

Outcome Workplace::run(const std::vector<std::string>& arguments,
                       const std::vector<std::string>& environment) const {
    std::string command = "env";
    for (const std::string& setting : environment) {
        command += quoted(setting);
    }
    command += " \"$DSMAKE\"";
    for (const std::string& argument : arguments) {
        command += quoted(argument);
    }
    return shell(command);
}

Outcome Workplace::shell(const std::string& command) const {
    const std::string out = folder_.string() + ".out";
    const std::string err = folder_.string() + ".err";
    const std::string in_folder = "cd" + quoted(folder_) +
                                  " && DSMAKE=" + quoted(folder_.string() + PROGRAM).substr(1) +
                                  " && { ";
    const int status =
        std::system((in_folder + command + "\n} >" + quoted(out) + " 2>" + quoted(err)).c_str());
    if (!WIFEXITED(status)) throw std::runtime_error("no child");
    return {WEXITSTATUS(status), read_file(out), read_file(err)};
}

std::vector<std::string> build_arguments(const std::string& schema,
                                         const std::vector<std::string>& keys) {
    std::vector<std::string> arguments = {"-s", schema, "-i", "in", "-o", "out"};
    for (const std::string& key : keys) {
        arguments.insert(arguments.end(), {"-k", key});
    }
    return arguments;
}

} // namespace test
