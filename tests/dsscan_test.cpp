// The scanner as a program: its options, where texts come from, what it prints, and faults.

#include "program.hpp"

#include <gtest/gtest.h>

#include <array>
#include <sys/stat.h>
#include <unistd.h>

namespace test {

namespace {

class Dsscan : public testing::Test {
protected:
    Dsscan() {
        place_.write("in", "Ann\tO'Neil\t4111 1111\nBob\tSmith\t5\nZo\xEB\tK\xC3\xB6hl\t6\n");
        EXPECT_EQ(place_
                      .run(build_arguments("First,Simple;Surname,SimpleNC;Card,CCNUMBER",
                                           {"Surname", "Card"}))
                      .exit_status,
                  0);
        place_.write("text", "Dear\nAnn O'NEIL,\nBob  Smith\n");
    }

    // Runs the scanner on "out" with what a shell makes of the arguments.
    [[nodiscard]] Outcome scan(const std::string& arguments) const {
        return place_.shell("'" DSMAKE_DSSCAN "' " + arguments);
    }
    void expect(const std::string& arguments, int exit_status, const std::string& out,
                const std::string& err = {}) const {
        const Outcome outcome = scan(arguments);
        EXPECT_EQ(outcome.exit_status, exit_status) << arguments;
        EXPECT_EQ(outcome.out, out) << arguments;
        EXPECT_EQ(outcome.err, err) << arguments;
    }
    // A program for --pre.
    void script(const std::string& name, const std::string& body) const {
        place_.write(name, "#!/bin/sh\n" + body);
        EXPECT_EQ(::chmod(place_.path(name).c_str(), S_IRWXU), 0);
    }

    Workplace place_;
};

constexpr const char* ANN =
    "text:2: Surname \"O'NEIL\", 2 of 3 fields: First Surname (record 80)\n";
constexpr const char* BOB =
    "text:3: Surname \"Smith\", 2 of 3 fields: First Surname (record 111)\n";

TEST_F(Dsscan, SaysWhatThereIsInTheFormatAskedFor) {
    const std::string both = std::string(ANN) + BOB;
    expect("out text", 0, both);
    expect("out text -w all -m 2", 0, both);
    expect("-w 0 out text", 1, "");
    expect("-m 3 out text", 1, "");
    expect("-k First -m1 out text", 0,
           "text:2: First \"Ann\", 2 of 3 fields: First Surname (record 80)\n"
           "text:3: First \"Bob\", 2 of 3 fields: First Surname (record 111)\n");
    expect("-c out text in text", 0, "text:2\nin:3\ntext:2\n");
    expect("-l out /dev/null text in", 0, "text\nin\n");
    expect("-l out text nothing", 2, "text\n", "nothing: No such file or directory\n");
    expect("-q out nothing text endless-pipe", 0, "", "nothing: No such file or directory\n");
    expect("-q out nothing", 2, "", "nothing: No such file or directory\n");
    expect("--json out - <text", 0,
           R"({"text":"-","line":2,"place":9,"length":6,"key":"Surname","quote":"O'NEIL",)"
           R"("fields":["First","Surname"],"of":3,"record":80})"
           "\n"
           R"({"text":"-","line":3,"place":22,"length":5,"key":"Surname","quote":"Smith",)"
           R"("fields":["First","Surname"],"of":3,"record":111})"
           "\n");
}

// What a text or its name holds cannot break a line, a terminal or a reader of JSON.
TEST_F(Dsscan, ShowsWhatCannotBePrinted) {
    place_.write("a \"\\\x01\xC2\x9B\xFF\n", "Zo\xEB\t K\xC3\xB6hl");
    expect("-c out a*", 0, "a \\\"\\\\\\x01\\xC2\\x9B\\xFF :1\n");
    expect("-k First --json out a*", 0,
           R"({"text":"a \"\\\u0001)"
           "\xC2\x9B\xEF\xBF\xBD"
           R"(\n","line":1,"place":0,"length":3,)"
           R"("key":"First","quote":"Zo)"
           "\xEF\xBF\xBD"
           R"(","fields":["First","Surname"],"of":3,"record":142})"
           "\n");
    place_.write("wide", "4111 \t\n  1111 Ann 4111" + std::string(8, '-') + "1111");
    expect("-m2 out wide", 0,
           "wide:1: Card \"4111 1111\", 2 of 3 fields: First Card (record 80)\n");
    place_.write("long", std::string(120, 'x') + "\t");
    expect("-c out long", 1, "long:0\n");
}

TEST_F(Dsscan, CutsLongQuotations) {
    std::string name;
    for (int i = 0; i < 30; ++i) {
        name += i % 2 == 0 ? "abc\xC3\xA9 " : "\\\xEB  ";
    }
    place_.write("in", name + "\n");
    place_.remove("out");
    ASSERT_EQ(place_.run(build_arguments("Name,Simple", {"Name"})).exit_status, 0);
    place_.write("text", "x " + name);
    std::string quoted;
    for (int i = 0; i < 22; ++i) { // of 9 characters each two
        quoted += i % 2 == 0 ? "abc\xC3\xA9 " : "\\\\\\xEB ";
    }
    expect("out text", 0,
           "text:1: Name \"" + quoted + "a\xE2\x80\xA6\", 1 of 1 fields: Name (record 48)\n");
}

// Folders in the order of bytes, each where its name stands; no links, no pipes.
TEST_F(Dsscan, GoesThroughFolders) {
    ASSERT_EQ(place_
                  .shell("mkdir -p f/b/deep f/empty && cp text f/b/deep/t && cp text f/b.x &&"
                         "cp text f/B && cp text f/bb && mkfifo f/a && ln -s ../text f/c &&"
                         "ln -s . f/loop && ln -s f link && cp text ./-")
                  .exit_status,
              0);
    expect("-l out f", 0, "f/B\nf/b/deep/t\nf/b.x\nf/bb\n");
    expect("-c out link/ ./-", 0, "link/B:2\nlink/b/deep/t:2\nlink/b.x:2\nlink/bb:2\n./-:2\n");
    expect("-l out f/loop/c - </dev/null", 0, "f/loop/c\n");
    expect("-c out f/empty", 1, "");
    ASSERT_EQ(place_
                  .shell("cd f && for i in $(seq 100); do mkdir d && cd d || exit 1; done &&"
                         "cp \"$OLDPWD/../text\" . || cp '" +
                         place_.path("text").string() + "' .")
                  .exit_status,
              0);
    EXPECT_EQ(scan("-l out f").out.size(),
              std::string("f/B\nf/b/deep/t\nf/b.x\nf/bb\nf/text\n").size() + 200);
}

TEST_F(Dsscan, TakesOtherEncodings) {
    ASSERT_EQ(place_
                  .shell("for e in UTF-16 UTF-16BE UTF-32LE UTF-7; do iconv -f UTF-8 -t $e "
                         "<text >$e; done")
                  .exit_status,
              0);
    for (const char* const encoding : {"UTF-16", "UTF-16BE", "UTF-32LE", "UTF-7"}) {
        expect(std::string("-c --encoding ") + encoding + " out " + encoding, 0,
               std::string(encoding) + ":2\n");
    }
    place_.write("latin", "Ann K\xF6hl, Zo\xEB");
    expect("-c out latin", 1, "latin:0\n");
    place_.write("mixed", "x\x81 Bob Smith\x81");
    expect("--json --encoding CP1252 out mixed | cut -d, -f 3,4", 0, "\"place\":7,\"length\":5\n");
}

// A byte that cannot be converted is one of its own, and what follows is read from its right place.
TEST_F(Dsscan, KeepsWhatCannotBeConverted) {
    place_.write("lone", std::string("B\0o\0b\0 \0\0\xD8S\0m\0i\0t\0h\0 \0S\0m\0i\0t\0h\0", 32));
    expect("--encoding UTF-16LE -c out lone", 0, "lone:1\n");
    place_.write("accent", "Zo\xEB K\xC3\xB6hl");
    expect("--encoding ASCII out accent", 1, "");
    place_.write("cut", "Bob Smith\xC3");
    expect("--encoding UTF-8 -c out cut", 0, "cut:1\n");
    expect("--encoding NONE out cut", 2, "",
           "dsscan: --encoding NONE: iconv knows none of that name\n");
}

TEST_F(Dsscan, ScansWhatACommandWrites) {
    script("twice", "cat \"$1\" \"$1\"; cat >&2; echo \"$#\" >&2");
    script("fails", "cat \"$1\"; exit 3");
    script("dies", "kill -9 $$");
    script("endless", "cat \"$1\"; exec yes");
    expect("-c --pre ./twice out text <text", 0, "text:2\n", "1\n");
    expect("-c --pre ./fails out - <text", 0, "-:2\n");
    expect("--pre ./fails out text", 2, std::string(ANN) + BOB,
           "text: --pre ./fails: ended with status 3\n");
    expect("-c --pre ./dies out text - <text", 2, "-:2\n",
           "text: --pre ./dies: was ended by signal 9\n");
    expect("--pre ./none out text", 2, "", "text: --pre ./none: No such file or directory\n");
    expect("-l --pre ./endless out text in", 0, "text\nin\n");
    ASSERT_EQ(place_.shell("iconv -f UTF-8 -t UTF-16BE <text >wide").exit_status, 0);
    expect("-c --pre cat --encoding UTF-16BE out wide", 0, "wide:2\n");
}

TEST_F(Dsscan, TellsFaultsOfTheCommandLine) {
    place_.write("none", "");
    const std::array<std::string, 12> wrong{"",
                                            "out",
                                            "-m 0 out text",
                                            "-m x out text",
                                            "-w -1 out text",
                                            "-c -l out text",
                                            "--json -q out text",
                                            "-z out text",
                                            "--nothing out text",
                                            "-m",
                                            "--pre '' out text",
                                            "-w '' out text"};
    for (const std::string& arguments : wrong) {
        const Outcome outcome = scan(arguments);
        EXPECT_EQ(outcome.exit_status, 2) << arguments;
        EXPECT_EQ(outcome.out, "") << arguments;
        EXPECT_NE(outcome.err.find("usage: dsscan"), std::string::npos) << arguments;
    }
    expect("-m 9 out text", 2, "", "-m 9: the records of out have 3 fields\n");
    expect("-m 99999999999999999999 out text | wc -c", 0, "0\n",
           "-m 18446744073709551615: the records of out have 3 fields\n");
    expect("-k surname out text", 2, "",
           "out: -k names no field of it; its fields: First Surname Card\n");
    EXPECT_EQ(scan("none text").exit_status, 2);
    for (const char* const help : {"-h", "--help", "--version"}) {
        const Outcome outcome = scan(help);
        EXPECT_EQ(outcome.exit_status, 0);
        EXPECT_NE(outcome.out.find("dsscan"), std::string::npos);
        EXPECT_EQ(scan(std::string(help) + " >/dev/full").exit_status, 2);
    }
}

TEST_F(Dsscan, TellsFaultsOfTextsAndOfTheOutput) {
    expect("out nothing text", 2, std::string(ANN) + BOB, "nothing: No such file or directory\n");
    expect("out text nothing 2>&1", 2,
           std::string(ANN) + BOB + "nothing: No such file or directory\n");
    expect("-c out text - < .", 2, "text:2\n", "-: Is a directory\n");
    expect("out text >/dev/full", 2, "", "standard output: No space left on device\n");
    expect("out text >&-", 2, "", "standard output: Bad file descriptor\n");
}

} // namespace

} // namespace test
