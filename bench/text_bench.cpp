#include "sample_text.hpp"
#include "scl/status/scl_status.hpp"
#include "scl/text/scl_case.hpp"
#include "scl/text/scl_normalize.hpp"
#include "scl/text/scl_string.hpp"

#include <benchmark/benchmark.h>

namespace {

void utf8_to_utf16(benchmark::State& state, std::u16string_view text) {
    std::string narrow;
    scl::scl_utf16_to_utf8(text, narrow);
    std::u16string wide;
    for (auto _ : state) {
        scl::scl_stow(narrow, wide);
        benchmark::DoNotOptimize(wide.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(narrow.size()));
}
BENCHMARK_CAPTURE(utf8_to_utf16, word, bench::WORD);
BENCHMARK_CAPTURE(utf8_to_utf16, address, bench::ADDRESS);
BENCHMARK_CAPTURE(utf8_to_utf16, accented, bench::ACCENTED);
BENCHMARK_CAPTURE(utf8_to_utf16, mixed_scripts, bench::MIXED_SCRIPTS);

void normalize(benchmark::State& state, std::u16string_view text) {
    scl::Scl_status status;
    std::u16string out;
    for (auto _ : state) {
        scl::scl_normalize(text, out, status);
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK_CAPTURE(normalize, word, bench::WORD);
BENCHMARK_CAPTURE(normalize, accented, bench::ACCENTED);
BENCHMARK_CAPTURE(normalize, decomposed, bench::DECOMPOSED);
BENCHMARK_CAPTURE(normalize, mixed_scripts, bench::MIXED_SCRIPTS);

// With the copy of the text that lower-casing in place needs.
void lower(benchmark::State& state, std::u16string_view text) {
    std::u16string out;
    for (auto _ : state) {
        out = text;
        scl::scl_lower(out);
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK_CAPTURE(lower, word, bench::WORD);
BENCHMARK_CAPTURE(lower, address, bench::ADDRESS);
BENCHMARK_CAPTURE(lower, cyrillic, bench::CYRILLIC);
BENCHMARK_CAPTURE(lower, mixed_scripts, bench::MIXED_SCRIPTS);

} // namespace
