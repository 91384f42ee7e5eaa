#include "sample_text.hpp"
#include "txtdfc/txtdfc_token_values.hpp"

#include <benchmark/benchmark.h>

namespace {

// What a field costs from its formatted value on.
void token_values(benchmark::State& state, std::u16string_view text) {
    std::vector<std::uint64_t> values;
    for (auto _ : state) {
        benchmark::DoNotOptimize(txtdfc::txtdfc_token_values(text, values));
        benchmark::DoNotOptimize(values.data());
    }
    state.counters["tokens"] = static_cast<double>(values.size());
}
BENCHMARK_CAPTURE(token_values, word, bench::WORD);
BENCHMARK_CAPTURE(token_values, address, bench::ADDRESS);
BENCHMARK_CAPTURE(token_values, accented, bench::ACCENTED);
BENCHMARK_CAPTURE(token_values, mixed_scripts, bench::MIXED_SCRIPTS);

} // namespace
