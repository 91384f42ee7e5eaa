#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace test {

// What a run of the program left behind.
struct Outcome {
    int exit_status = -1; // 128 + the signal's number when one ended it
    std::string out;
    std::string err;
};

// Empty when there is no such file.
[[nodiscard]] inline std::string read_file(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// An empty folder to run the program in; gone at the end of the test.
class Workplace {
public:
    Workplace();
    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;
    ~Workplace();

    [[nodiscard]] std::filesystem::path path(std::string_view name) const { return folder_ / name; }
    void write(std::string_view name, std::string_view bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
    }
    [[nodiscard]] std::string read(std::string_view name) const { return read_file(path(name)); }
    [[nodiscard]] bool exists(std::string_view name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(path(name)));
    }
    void remove(std::string_view name) const { std::filesystem::remove_all(path(name)); }

    // Runs dsmake here with these arguments, and with "NAME=value" added to the environment.
    [[nodiscard]] Outcome run(const std::vector<std::string>& arguments,
                              const std::vector<std::string>& environment = {}) const;
    // Runs a shell command here; "$DSMAKE" is the program, with a space in its path.
    [[nodiscard]] Outcome shell(const std::string& command) const;

private:
    std::filesystem::path folder_;
};

// A command line that builds "out" from "in".
[[nodiscard]] std::vector<std::string> build_arguments(const std::string& schema,
                                                       const std::vector<std::string>& keys);

} // namespace test
