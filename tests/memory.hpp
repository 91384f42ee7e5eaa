#pragma once

#include "scl/status/scl_status.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <new>

// Memory of a test program: counted, and made to fail.
namespace test {

struct Memory {
    static inline long fail_at = 0;   // which taking of memory fails, from 1; 0: none
    static inline bool stays = false; // and all after it
    static inline bool has_failed = false;
    static inline std::size_t in_use = 0; // bytes
    static inline std::size_t most = 0;   // since it was set
};

enum class End { done, no_memory, other };

// Makes the Nth taking of memory fail while `work` is done.
template <typename Work>
End with_failure_at(long number, bool stays, const Work& work) {
    scl::Scl_status status;
    End end = End::done;
    Memory::has_failed = false;
    Memory::stays = stays;
    Memory::fail_at = number;
    try {
        work(status);
        if (status.has_failed()) {
            end = status == scl::SCL_STATUS_NO_MEMORY ? End::no_memory : End::other;
        }
    } catch (const std::bad_alloc&) {
        end = End::no_memory;
    } catch (...) {
        end = End::other;
    }
    Memory::fail_at = 0;
    return end;
}

// Fails each taking of memory in turn, alone and with all after it. The work must be done rightly,
// as `check` sees, or end for lack of memory.
template <typename Work, typename Check>
void fail_each(const Work& work, const Check& check) {
    for (const bool stays : {false, true}) {
        long number = 1;
        for (;; ++number) {
            SCOPED_TRACE(number);
            const End end = with_failure_at(number, stays, work);
            ASSERT_NE(end, End::other);
            if (end == End::done) check();
            if (!Memory::has_failed) break;
            EXPECT_TRUE(!stays || end == End::no_memory);
        }
        EXPECT_GT(number, 1) << "nothing was made to fail";
    }
}

} // namespace test
