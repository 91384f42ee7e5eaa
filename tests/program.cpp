#include "program.hpp"

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

namespace {

void redirect(int descriptor, const std::filesystem::path& to) {
    const int file = ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (file < 0 || ::dup2(file, descriptor) < 0) ::_exit(126);
    ::close(file);
}

[[noreturn]] void become(const std::filesystem::path& folder, std::vector<std::string> command,
                         const std::vector<std::string>& environment) {
    if (::chdir(folder.c_str()) != 0) ::_exit(126);
    redirect(STDOUT_FILENO, folder.string() + ".out");
    redirect(STDERR_FILENO, folder.string() + ".err");
    for (const std::string& setting : environment) {
        ::putenv(const_cast<char*>(setting.c_str()));
    }
    std::vector<char*> pointers;
    for (std::string& word : command) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    ::execv(pointers[0], pointers.data());
    ::_exit(127);
}

std::string read_file(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

Outcome run_command(const std::filesystem::path& folder, const std::vector<std::string>& command,
                    const std::vector<std::string>& environment) {
    const pid_t child = ::fork();
    if (child == 0) become(folder, command, environment);
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child) throw std::runtime_error("no child");
    Outcome outcome;
    outcome.exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    outcome.out = read_file(folder.string() + ".out");
    outcome.err = read_file(folder.string() + ".err");
    return outcome;
}

} // namespace

Workplace::Workplace() {
    std::string name = std::filesystem::temp_directory_path() / "dsmake-test-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = name;
}

Workplace::~Workplace() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
    std::filesystem::remove(folder_.string() + ".out", ignored);
    std::filesystem::remove(folder_.string() + ".err", ignored);
}

void Workplace::write(std::string_view name, std::string_view bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
}

std::string Workplace::read(std::string_view name) const {
    return read_file(path(name));
}

bool Workplace::exists(std::string_view name) const {
    return std::filesystem::exists(std::filesystem::symlink_status(path(name)));
}

void Workplace::remove(std::string_view name) const {
    std::filesystem::remove_all(path(name));
}

Outcome Workplace::run(const std::vector<std::string>& arguments,
                       const std::vector<std::string>& environment) const {
    std::vector<std::string> command = {DSMAKE_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run_command(folder_, command, environment);
}

Outcome Workplace::shell(const std::string& command) const {
    return run_command(folder_, {"/bin/sh", "-c", command}, {"DSMAKE=" DSMAKE_PROGRAM});
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
