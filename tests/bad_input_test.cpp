#include "program.hpp"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

using test::Outcome;
using test::Workplace;
namespace fs = std::filesystem;

constexpr int FAULT = 255;

class Bad_input : public testing::Test {
protected:
    Outcome build() const { return place.run(arguments); }
    // Builds `input` and returns the file.
    std::string built(std::string_view input) const {
        place.write("in", input);
        place.remove("out");
        const Outcome outcome = build();
        EXPECT_EQ(outcome.exit_status, 0) << outcome.err;
        return place.read("out");
    }

    void expect_refused(const char* option, const std::vector<std::string>& names) const {
        const std::string which = option == std::string("-i") ? "Input" : "Output";
        for (const std::string& name : names) {
            const Outcome outcome = place.run({option, name});
            EXPECT_EQ(outcome.err, which + " Filename Invalid.") << name;
            EXPECT_EQ(outcome.exit_status, FAULT);
        }
    }

    Workplace place;
    const std::vector<std::string> arguments = test::build_arguments("A,Simple;B,SimpleNC", {"B"});
};

TEST_F(Bad_input, ACutInputGivesItsWholeLines) {
    const std::string whole = "Zo\xc3\xab\tSmith\r\n\xef\xbb\xbf"
                              "a\t\xef\xbf\xbd\nx\ty\r\n";
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const std::string cut = whole.substr(0, size);
        const std::string lines = cut.substr(0, cut.rfind('\n') + 1);
        const std::string expected = built(lines);
        place.write("in", cut);
        place.remove("out");
        const Outcome outcome = build();
        if (cut.ends_with('\r')) {
            EXPECT_EQ(outcome.err, "Invalid line ending in input file.");
        } else {
            EXPECT_EQ(outcome.exit_status, 0);
            EXPECT_EQ(place.read("out"), expected) << size;
        }
    }
}

TEST_F(Bad_input, ByteOrderMarksAreDroppedAnywhere) {
    const std::string mark = "\xef\xbb\xbf";
    EXPECT_EQ(built(mark + "S" + mark + mark + "mith\t" + mark + "x" + mark + "\r\n" + mark),
              built("Smith\tx\n"));
    EXPECT_NE(built("S\xef\xbbmith\tx\n"), built("Smith\tx\n"));
}

TEST_F(Bad_input, AnyBytesAreAValue) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        if (byte != '\t' && byte != '\n' && byte != '\r') all += static_cast<char>(byte);
    }
    EXPECT_EQ(built(all + "\tx\n").size(), built(all + "\ty\n").size());
    EXPECT_NE(built(std::string("a\0b\tx\n", 6)), built("a\tx\n"));
    EXPECT_NE(built("\xe9\tx\n"), built("\xea\tx\n")) << "bytes that are no UTF-8 stay apart";
}

TEST_F(Bad_input, LongLinesAndManyFieldsEndByThemselves) {
    EXPECT_EQ(built(std::string(3000000, 'a') + "\tx\n").size(), 96U);
    place.write("in", std::string(200000, '\t') + "\n");
    place.remove("out");
    EXPECT_EQ(build().err, "Field count does not match the schema.");
}

TEST_F(Bad_input, OnlyRegularFilesAreRead) {
    fs::create_directory(place.path("folder"));
    ASSERT_EQ(::mkfifo(place.path("pipe").c_str(), 0600), 0);
    fs::create_symlink("nowhere", place.path("dangling"));
    expect_refused("-i", {"folder", "pipe", "/dev/zero", "dangling", ""});
}

TEST_F(Bad_input, NothingThatExistsIsOverwritten) {
    place.write("in", "a\tb\n");
    place.write("precious", "data");
    fs::create_symlink("precious", place.path("link"));
    fs::create_symlink("nowhere", place.path("dangling"));
    fs::create_directory(place.path("folder"));
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

    fs::create_directory(place.path("mid_buf"));
    place.remove("out");
    const Outcome outcome = build();
    EXPECT_EQ(outcome.exit_status, 0) << "silent by definition";
    EXPECT_EQ(outcome.err + outcome.out, "");
    EXPECT_EQ(place.read("out"), "");
}

TEST_F(Bad_input, TwoRunsInOneFolderDoNotMeet) {
    std::string lines;
    for (int i = 0; i < 5000; ++i) {
        lines += std::to_string(i) + "\tx" + std::to_string(i % 77) + "\n";
    }
    const std::string expected = built(lines);
    const Outcome outcome = place.shell(
        "for i in 1 2 3 4 5 6; do $DSMAKE -s 'A,Simple;B,SimpleNC' -k B -i in -o o$i || exit 1 & "
        "done; wait");
    EXPECT_EQ(outcome.err, "");
    for (const char* name : {"o1", "o2", "o3", "o4", "o5", "o6"}) {
        EXPECT_TRUE(place.read(name) == expected) << name;
    }
    EXPECT_FALSE(place.exists("mid_buf"));
}

TEST_F(Bad_input, AFileSizeLimitIsAWriteErrorLikeAnyOther) {
    place.write("in", std::string(40000, 'a') + "\t" + std::string(3000, '-') + "\n");
    const Outcome outcome =
        place.shell("ulimit -f 8; $DSMAKE -s 'A,Simple;B,Simple' -k B -i in -o out");
    EXPECT_EQ(outcome.exit_status, FAULT);
    EXPECT_NE(outcome.err.find("0xC2000014: "), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find(": File too large"), std::string::npos) << outcome.err;
    EXPECT_FALSE(place.exists("out"));
    EXPECT_FALSE(place.exists("mid_buf"));
}

TEST_F(Bad_input, ClosedStandardStreamsNeverReachTheOutput) {
    const std::string expected = built("a\tb\na\tb\n");
    place.remove("out");
    (void)place.shell("$DSMAKE -s 'A,Simple;B,SimpleNC' -k B -i in -o out <&- >&- 2>&-");
    EXPECT_EQ(place.read("out"), expected);
}

TEST_F(Bad_input, MemoryExhaustedUnwinds) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer reserves more address space than the limit leaves";
#else
    std::string line = "\tx\n";
    line.insert(0, 60000000, 'a');
    place.write("in", line);
    const Outcome outcome =
        place.shell("ulimit -v 150000; $DSMAKE -s 'A,Simple;B,Simple' -k B -i in -o out");
    EXPECT_EQ(outcome.exit_status, FAULT);
    EXPECT_EQ(outcome.err, "std::bad_alloc\n");
    EXPECT_FALSE(place.exists("out"));
    EXPECT_FALSE(place.exists("mid_buf"));
#endif
}

} // namespace
