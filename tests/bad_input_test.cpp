#include "program.hpp"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

using test::Outcome;
using test::Workplace;
namespace fs = std::filesystem;

class Bad_input : public testing::Test {
protected:
    // Builds `input`.
    Outcome build(std::string_view input) const {
        place.write("in", input);
        place.remove("out");
        return place.run(test::build_arguments("A,Simple;B,SimpleNC", {"B"}));
    }
    // The file that is made of it.
    std::string built(std::string_view input) const {
        const Outcome outcome = build(input);
        EXPECT_EQ(outcome.exit_status, 0) << outcome.err;
        return place.read("out");
    }
    void expect_refused(const char* option, const std::vector<std::string>& names) const {
        const std::string which = option == std::string("-i") ? "Input" : "Output";
        for (const std::string& name : names) {
            const Outcome outcome = place.run({option, name});
            EXPECT_EQ(outcome.err, which + " Filename Invalid.") << name;
            EXPECT_EQ(outcome.exit_status, 255);
        }
    }
    // Builds under limits that it cannot keep.
    void expect_nothing_left(const std::string& limits, std::string_view message) const {
        const Outcome outcome = place.shell(limits + BUILD + "out");
        EXPECT_EQ(outcome.exit_status, 255);
        EXPECT_NE(outcome.err.find(message), std::string::npos) << outcome.err;
        EXPECT_FALSE(place.exists("out") || place.exists("mid_buf"));
    }

    const std::string BUILD = "\"$DSMAKE\" -s 'A,Simple;B,SimpleNC' -k B -i in -o ";
    Workplace place;
};

TEST_F(Bad_input, ACutInputGivesItsWholeLines) {
    const std::string whole = "Zo\xc3\xab\tSmith\r\n\xef\xbb\xbf"
                              "a\t\xef\xbf\xbd\nx\ty\r\n";
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const std::string cut = whole.substr(0, size);
        if (cut.ends_with('\r')) {
            EXPECT_EQ(build(cut).err, "Invalid line ending in input file.");
        } else {
            EXPECT_EQ(built(cut), built(cut.substr(0, cut.rfind('\n') + 1))) << size;
        }
    }
}

TEST_F(Bad_input, ByteOrderMarksAreDroppedAnywhere) {
    const std::string mark = "\xef\xbb\xbf";
    EXPECT_EQ(built(mark + "S" + mark + mark + "mith\t" + mark + "x" + mark + "\r\n" + mark),
              built("Smith\tx\n"));
    EXPECT_NE(built("S\xef\xbbmith\tx\n"), built("Smith\tx\n"));
}

TEST_F(Bad_input, AnyBytesAreAValueOfAnyLength) {
    EXPECT_NE(built(std::string("a\0b\tx\n", 6)), built("a\tx\n"));
    EXPECT_NE(built("\xe9\tx\n"), built("\xea\tx\n")) << "bytes that are no UTF-8 stay apart";
    EXPECT_NE(built("Caf\xe9\tx\n"), built("Caf\xc3\xa9\tx\n"));
    EXPECT_EQ(built(std::string(3000000, 'a') + "\tx\n").size(), 96U);
}

TEST_F(Bad_input, OnlyRegularFilesAreReadAndNothingIsOverwritten) {
    fs::create_directory(place.path("folder"));
    ASSERT_EQ(::mkfifo(place.path("pipe").c_str(), 0600), 0);
    fs::create_symlink("nowhere", place.path("dangling"));
    expect_refused("-i", {"folder", "pipe", "/dev/zero", "dangling", ""});
    place.write("precious", "data");
    fs::create_symlink("precious", place.path("link"));
    expect_refused("-o", {"precious", "link", "dangling", "folder", "none/out", ""});
    EXPECT_EQ(place.read("precious"), "data");
    EXPECT_FALSE(place.exists("nowhere"));
}

TEST_F(Bad_input, TheScratchFileIsNeitherInputNorOutput) {
    place.write("mid_buf", "a\tb\n");
    fs::create_symlink("mid_buf", place.path("link"));
    fs::create_hard_link(place.path("mid_buf"), place.path("same"));
    const std::string whole_path = place.path("mid_buf");
    expect_refused("-i", {"mid_buf", "link", "same", whole_path});
    EXPECT_EQ(place.read("mid_buf"), "a\tb\n");
    place.remove("mid_buf");
    expect_refused("-o", {"mid_buf", "./mid_buf", whole_path});
    EXPECT_FALSE(place.exists("mid_buf"));
    place.write("in", "a\tb\n");
    fs::create_directory(place.path("sub"));
    EXPECT_EQ(place.shell(BUILD + "sub/mid_buf").exit_status, 0) << "another folder's is no other";
    EXPECT_FALSE(place.read("sub/mid_buf").empty());
}

TEST_F(Bad_input, AStaleOrHostileScratchFileDoesNoHarm) {
    const std::string expected = built("a\tb\n");
    place.write("precious", "data");
    place.write("mid_buf", "left by a run that was killed");
    EXPECT_EQ(built("a\tb\n"), expected);
    fs::create_symlink("precious", place.path("mid_buf"));
    EXPECT_EQ(built("a\tb\n"), expected);
    EXPECT_EQ(place.read("precious"), "data");
    EXPECT_FALSE(place.exists("mid_buf"));
    fs::create_symlink("in", place.path("mid_buf"));
    EXPECT_EQ(built("a\tb\n"), expected) << "only the link is replaced";
    fs::create_directory(place.path("mid_buf"));
    const Outcome outcome = build("a\tb\n");
    EXPECT_EQ(outcome.exit_status, 0) << "silent by definition";
    EXPECT_EQ(outcome.err + outcome.out + place.read("out"), "");
}

TEST_F(Bad_input, RunsInOneFolderDoNotMeetAndNeedNoStandardStreams) {
    std::string lines;
    for (int i = 0; i < 5000; ++i) {
        lines += std::to_string(i) + "\tx" + std::to_string(i % 77) + "\n";
    }
    const std::string expected = built(lines + "a\tb\na\tb\n"); // with a warning
    (void)place.shell("for i in 1 2 3 4 5 6; do " + BUILD + "o$i <&- >&- 2>&- & done; wait");
    for (const char* name : {"o1", "o2", "o3", "o4", "o5", "o6"}) {
        EXPECT_TRUE(place.read(name) == expected) << name;
    }
    EXPECT_FALSE(place.exists("mid_buf"));
}

// The system gives a new file the lowest number that is free: what is printed while the output is
// open would go into it.
TEST_F(Bad_input, AnOutputTakesNoNumberOfAClosedStream) {
    for (const std::string closing : {"<&-", ">&-", "2>&-", "<&- >&-", "<&- >&- 2>&-"}) {
        EXPECT_EQ(place.shell("\"$DSMAKE\" -o out -x " + closing).exit_status, 255);
        EXPECT_TRUE(place.exists("out") && place.read("out").empty()) << closing;
        place.remove("out");
    }
}

TEST_F(Bad_input, AFileSizeLimitIsAWriteErrorLikeAnyOther) {
    place.write("in", std::string(40000, 'a') + "\t" + std::string(3000, '-') + "\n");
    expect_nothing_left("ulimit -f 8; ", "0xC2000014: ");
    expect_nothing_left("ulimit -f 8; ", ": File too large");
}

TEST_F(Bad_input, MemoryExhaustedUnwinds) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer reserves more address space than the limit leaves";
#else
    std::string line = "\tx\n";
    line.insert(0, 60000000, 'a');
    place.write("in", line);
    expect_nothing_left("ulimit -v 60000; ", "0xC2000001: There is not enough memory.");
#endif
}

} // namespace
