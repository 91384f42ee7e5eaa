#include "data_set_files.hpp"

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Arguments = std::vector<std::string>;

const std::string SCHEMA = "Name,Simple;Key,SimpleNC";
const Arguments BUILD = test::build_arguments(SCHEMA, {"Key", "Name"});
const Arguments FAILING = test::build_arguments(SCHEMA, {"Key", "None"});
const Arguments UPGRADE = {"-u", "-i", "old", "-o", "out"};
constexpr std::string_view FOREIGN = "another's";

// How a run that does not stop any more ended: its exit status, or 128 and the signal's number.
int status_of(int ended) {
    return WIFSIGNALED(ended) ? 128 + WTERMSIG(ended) : WEXITSTATUS(ended);
}

// Runs that stop before a file operation of theirs, so that signals meet them at any moment that
// makes a difference to files, and at none by chance.
class Interrupt : public testing::Test {
protected:
    void SetUp() override {
        // The loader takes a space in a library's path for the end of it.
        std::filesystem::copy_file(DSMAKE_FAIL_NTH, place.path("fail_nth.so"));
        test::Rows rows;
        std::string lines;
        for (int i = 0; i < 1000; ++i) {
            rows.push_back({"name" + std::to_string(i), "key" + std::to_string(i % 500)});
            lines += rows.back()[0] + "\t" + rows.back()[1] + "\n";
        }
        place.write("in", lines);
        place.write("old", test::version1(SCHEMA, {"Key", "Name"}, rows));
    }

    // Starts a run, its messages thrown away. False when it ended before the operation; `ended`
    // then tells how.
    bool stop_before(int operation, Arguments arguments, int ignored_signal = 0) {
        arguments.insert(arguments.begin(), DSMAKE_PROGRAM);
        std::vector<char*> words;
        for (std::string& argument : arguments) {
            words.push_back(argument.data());
        }
        words.push_back(nullptr);
        child = ::fork();
        if (child == 0) run(operation, words.data(), ignored_signal);
        ::waitpid(child, &ended, WUNTRACED);
        return WIFSTOPPED(ended);
    }
    [[nodiscard]] int go_on_with(int signal) {
        ::kill(child, signal);
        ::kill(child, SIGCONT);
        ::waitpid(child, &ended, 0);
        return status_of(ended);
    }

    test::Workplace place;
    int ended = 0;

private:
    [[noreturn]] void run(int operation, char** words, int ignored_signal) const {
        ::setenv("LD_PRELOAD", place.path("fail_nth.so").c_str(), 1);
        ::setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
        ::setenv("FAIL_AT", std::to_string(operation).c_str(), 1);
        ::setenv("FAIL_STOP", "1", 1);
        // Whatever the tests themselves were started with.
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            std::signal(signal, signal == ignored_signal ? SIG_IGN : SIG_DFL);
        }
        const bool is_quiet = std::freopen("/dev/null", "w", stdout) != nullptr &&
                              std::freopen("/dev/null", "w", stderr) != nullptr;
        if (is_quiet && ::chdir(place.path("").c_str()) == 0) ::execv(words[0], words);
        ::_exit(99);
    }

    pid_t child = 0;
};

TEST_F(Interrupt, LeavesNothingBehindAtAnyMoment) {
    constexpr std::array SIGNALS = {SIGINT, SIGTERM, SIGHUP};
    for (const Arguments& arguments : {BUILD, UPGRADE}) {
        int operation = 1;
        for (; stop_before(operation, arguments); ++operation) {
            const int signal = SIGNALS[static_cast<std::size_t>(operation) % SIGNALS.size()];
            EXPECT_EQ(go_on_with(signal), 128 + signal) << operation;
            EXPECT_FALSE(place.exists("mid_buf") || place.exists("out")) << operation;
        }
        EXPECT_EQ(status_of(ended), 0);
        EXPECT_GT(operation, 20);
        place.remove("out");
    }
}

// Whatever has the names of the run's files and is not its own: there before and refused, or put
// there by another run that has removed or not yet met ours.
TEST_F(Interrupt, LeavesAloneWhatIsNotItsOwn) {
    for (const Arguments& arguments : {BUILD, UPGRADE, FAILING}) {
        for (int operation = 1; stop_before(operation, arguments); ++operation) {
            const bool is_own = place.exists("out");
            if (!is_own) place.write("out", FOREIGN);
            place.remove("mid_buf");
            place.write("mid_buf", FOREIGN);
            EXPECT_EQ(go_on_with(SIGTERM), 128 + SIGTERM) << operation;
            EXPECT_EQ(place.read("out"), is_own ? "" : FOREIGN) << operation;
            EXPECT_EQ(place.read("mid_buf"), FOREIGN) << operation;
            place.remove("out");
        }
        place.remove("out");
    }
    place.write("out", FOREIGN);
    for (int operation = 1; stop_before(operation, BUILD); ++operation) {
        (void)go_on_with(SIGTERM);
        EXPECT_EQ(place.read("out"), FOREIGN) << operation;
    }
}

TEST_F(Interrupt, AnotherRunsScratchFileStaysWhenARunEnds) {
    ASSERT_TRUE(stop_before(15, BUILD) && place.exists("mid_buf"));
    place.remove("mid_buf");
    place.write("mid_buf", FOREIGN);
    EXPECT_EQ(go_on_with(SIGCONT), 0);
    EXPECT_EQ(place.read("mid_buf"), FOREIGN);
}

TEST_F(Interrupt, ASignalIgnoredAtTheStartStaysIgnored) {
    ASSERT_TRUE(stop_before(15, BUILD, SIGHUP));
    EXPECT_EQ(go_on_with(SIGHUP), 0);
    EXPECT_FALSE(place.read("out").empty());
}

} // namespace
