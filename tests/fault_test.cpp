#include "data_set_files.hpp"
#include "program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Outcome;
using test::Workplace;

// Nothing may be lost without a word: either the right file, or a message, exit status 255 and no
// file. The one exception is a build whose scratch file cannot be set up, which ends silently by
// definition, the output empty.
void expect_honest(const Outcome& outcome, const Workplace& place, const std::string& expected,
                   bool is_build) {
    if (outcome.exit_status == 0) {
        const std::string found = place.read("out");
        EXPECT_TRUE(found == expected || (is_build && found.empty() && outcome.err.empty()));
    } else {
        EXPECT_EQ(outcome.exit_status, 255);
        EXPECT_GT(outcome.err.size(), 10U);
        EXPECT_FALSE(place.exists("out")) << outcome.err;
    }
}

// Fails the first operation, then the second, and so on, until a run meets no failure.
void fail_each_operation(const std::vector<std::string>& arguments, const std::string& input,
                         const std::string& kind) {
    const Workplace place;
    // The loader takes a space in a library's path for the end of it.
    std::filesystem::copy_file(DSMAKE_FAIL_NTH, place.path("fail_nth.so"));
    const std::string preload = "LD_PRELOAD=" + place.path("fail_nth.so").string();
    place.write("in", input);
    ASSERT_EQ(place.run(arguments).exit_status, 0);
    const std::string expected = place.read("out");
    int failures = 0;
    for (int operation = 1; operation < 1000; ++operation) {
        SCOPED_TRACE("operation " + std::to_string(operation));
        place.remove("out");
        place.remove("failed");
        // Looking for leaks at its end would take a third of a run.
        const Outcome outcome =
            place.run(arguments, {preload, "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0",
                                  "FAIL_AT=" + std::to_string(operation), kind,
                                  "FAIL_REPORT=" + place.path("failed").string()});
        expect_honest(outcome, place, expected, arguments.front() != "-u");
        place.remove("mid_buf"); // stays when its removal is what failed
        if (!place.exists("failed")) {
            EXPECT_TRUE(place.read("out") == expected);
            EXPECT_GT(operation, 5);
            // What was interrupted is done again.
            const bool is_retried = kind == "FAIL_INTERRUPTED=1";
            EXPECT_TRUE(is_retried ? failures == 0 : failures > (kind == "FAIL_EMPTY=1" ? 4 : 15));
            return;
        }
        if (outcome.exit_status == 255) ++failures;
    }
    FAIL() << "no run came to its end";
}

class Fault : public testing::TestWithParam<const char*> {};

TEST_P(Fault, ABuildLosesNothing) {
    // Large enough for several buffers of input, records and output.
    std::string lines;
    for (int i = 0; i < 6000; ++i) {
        lines += "name " + std::to_string(i) + "\tkey" + std::to_string(i % 100) + "\n";
    }
    fail_each_operation(test::build_arguments("A,Simple;B,Simple", {"A", "B"}),
                        lines + "name 0\tkey0\n", GetParam());
}

TEST_P(Fault, AnUpgradeLosesNothing) {
    test::Rows rows;
    for (int i = 0; i < 4500; ++i) {
        rows.push_back({"name " + std::to_string(i), "key" + std::to_string(i % 100)});
    }
    fail_each_operation({"-u", "-i", "in", "-o", "out"},
                        test::version1("A,Simple;B,Simple", {"A", "B"}, rows), GetParam());
}

// Memory that runs out, once or for good, is told as that and nothing else.
void fail_each_allocation(const std::vector<std::string>& arguments, const std::string& input) {
    const Workplace place;
    std::filesystem::copy_file(DSMAKE_FAIL_NEW, place.path("fail_new.so"));
    place.write("in", input);
    ASSERT_EQ(place.run(arguments).exit_status, 0);
    const std::string expected = place.read("out");
    for (const std::string kind : {"FAIL_ONCE=1", "FAIL_ON=1"}) {
        int failures = 0;
        for (int allocation = 1;; ++allocation) {
            SCOPED_TRACE(kind + ", allocation " + std::to_string(allocation));
            place.remove("out");
            place.remove("failed");
            const Outcome outcome =
                place.run(arguments, {"LD_PRELOAD=" + place.path("fail_new.so").string(),
                                      "ASAN_OPTIONS=verify_asan_link_order=0",
                                      "FAIL_AT=" + std::to_string(allocation), kind,
                                      "FAIL_REPORT=" + place.path("failed").string()});
            EXPECT_FALSE(place.exists("mid_buf"));
            if (outcome.exit_status == 0) {
                EXPECT_TRUE(place.read("out") == expected);
            } else {
                ASSERT_EQ(outcome.exit_status, 255);
                EXPECT_NE(outcome.err.find("0xC2000001: There is not enough memory."),
                          std::string::npos)
                    << outcome.err;
                EXPECT_FALSE(place.exists("out"));
                ++failures;
            }
            if (!place.exists("failed")) break;
        }
        EXPECT_GT(failures, 20);
    }
}

TEST(Memory_fault, NoMemoryIsToldByABuild) {
    std::string lines = "a word and \xc3\xa9\t" + std::string(40000, '!') + "\n";
    for (int i = 0; i < 50; ++i) {
        lines += "a name that is long " + std::to_string(i / 2) + "\tkey\n";
    }
    fail_each_allocation(
        test::build_arguments("A name for a field,Simple;B,SimpleNC", {"A name for a field", "B"}),
        lines);
}

TEST(Memory_fault, NoMemoryIsToldByAnUpgrade) {
    test::Rows rows;
    for (int i = 0; i < 50; ++i) {
        rows.push_back({"a name that is long " + std::to_string(i), "key"});
    }
    fail_each_allocation({"-u", "-i", "in", "-o", "out"},
                         test::version1("A,Simple;B,Simple", {"A", "B"}, rows));
}

// Only that one, all from there on, only a read that brings nothing, or only an interruption.
INSTANTIATE_TEST_SUITE_P(Each, Fault,
                         testing::Values("FAIL_ONCE=1", "FAIL_ON=1", "FAIL_EMPTY=1",
                                         "FAIL_INTERRUPTED=1"));

} // namespace
