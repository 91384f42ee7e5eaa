#include "data_set_files.hpp"

#include <chrono>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
using Arguments = std::vector<std::string>;

// How a run ended: its exit status, or 128 and the number of the signal that ended it.
int wait_for(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

// Starts the program in a folder, its messages thrown away.
pid_t start(const test::Workplace& place, Arguments arguments, int ignored_signal = 0) {
    arguments.insert(arguments.begin(), DSMAKE_PROGRAM);
    std::vector<char*> words;
    for (std::string& argument : arguments) {
        words.push_back(argument.data());
    }
    words.push_back(nullptr);
    const std::string folder = place.path("");
    const pid_t child = ::fork();
    if (child != 0) return child;
    if (ignored_signal != 0) std::signal(ignored_signal, SIG_IGN);
    const bool is_quiet = std::freopen("/dev/null", "w", stdout) != nullptr &&
                          std::freopen("/dev/null", "w", stderr) != nullptr;
    if (is_quiet && ::chdir(folder.c_str()) == 0) {
        ::execv(words[0], words.data());
    }
    ::_exit(99);
}

std::string many_lines() {
    std::string lines;
    for (int i = 0; i < 60000; ++i) {
        lines += "name" + std::to_string(i) + "\tkey" + std::to_string(i % 5000) + "\n";
    }
    return lines;
}

test::Rows many_rows() {
    test::Rows rows;
    for (int i = 0; i < 30000; ++i) {
        rows.push_back({"name" + std::to_string(i), "key" + std::to_string(i % 5000)});
    }
    return rows;
}

const std::string SCHEMA = "Name,Simple;Key,SimpleNC";
constexpr int MOMENTS = 25;

// Sends a signal after a while. Either the run was over, with the right file, or the signal ended
// it, which makes the result true, and nothing is left.
bool interrupt(const test::Workplace& place, const Arguments& arguments, int signal,
               std::int64_t microseconds, const std::string& expected) {
    place.remove("out");
    const pid_t child = start(place, arguments);
    ::usleep(static_cast<useconds_t>(microseconds));
    ::kill(child, signal);
    const int ended = wait_for(child);
    EXPECT_FALSE(place.exists("mid_buf"));
    if (ended == 0) {
        EXPECT_TRUE(place.read("out") == expected);
        return false;
    }
    EXPECT_EQ(ended, 128 + signal);
    EXPECT_FALSE(place.exists("out"));
    return true;
}

// At moments all over a run.
void interrupt_everywhere(const std::string& input, const Arguments& arguments) {
    const test::Workplace place;
    place.write("in", input);
    const auto begin = Clock::now();
    ASSERT_EQ(wait_for(start(place, arguments)), 0);
    const auto whole_run =
        std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin).count();
    const std::string expected = place.read("out");
    int interrupted = 0;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        for (int moment = 0; moment < MOMENTS; ++moment) {
            const auto after = whole_run * moment / MOMENTS;
            interrupted += interrupt(place, arguments, signal, after, expected) ? 1 : 0;
        }
    }
    EXPECT_GT(interrupted, MOMENTS);
}

TEST(Interrupt, ABuildLeavesNothingBehind) {
    interrupt_everywhere(many_lines(), test::build_arguments(SCHEMA, {"Key", "Name"}));
}

TEST(Interrupt, AnUpgradeLeavesNothingBehind) {
    interrupt_everywhere(test::version1(SCHEMA, {"Key"}, many_rows()),
                         {"-u", "-i", "in", "-o", "out"});
}

// What was there before is not the run's own.
TEST(Interrupt, ARefusedFileStays) {
    const test::Workplace place;
    place.write("out", "precious");
    for (int moment = 0; moment < MOMENTS; ++moment) {
        const pid_t child = start(place, {"-o", "out"});
        ::usleep(static_cast<useconds_t>(100 * moment));
        ::kill(child, SIGTERM);
        (void)wait_for(child);
        EXPECT_EQ(place.read("out"), "precious");
    }
}

TEST(Interrupt, ASignalIgnoredAtTheStartStaysIgnored) {
    const test::Workplace place;
    place.write("in", many_lines());
    const pid_t child = start(place, test::build_arguments(SCHEMA, {"Key"}), SIGHUP);
    ::usleep(5000);
    ::kill(child, SIGHUP);
    EXPECT_EQ(wait_for(child), 0);
    EXPECT_FALSE(place.read("out").empty());
}

} // namespace
