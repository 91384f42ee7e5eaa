#include "records/field_token_writer.hpp"
#include "sample_text.hpp"

#include <benchmark/benchmark.h>

namespace {

// A value through the codec: attach, view, the CRC of each token.
void token_values(benchmark::State& state, std::u16string_view text) {
    tla::Field_token_writer writer;
    std::vector<std::uint64_t> values;
    scl::Scl_status status;
    for (auto _ : state) {
        benchmark::DoNotOptimize(writer.collect(text, values, status));
        benchmark::DoNotOptimize(values.data());
    }
    state.counters["tokens"] = static_cast<double>(values.size());
}
BENCHMARK_CAPTURE(token_values, word, bench::WORD);
BENCHMARK_CAPTURE(token_values, address, bench::ADDRESS);
BENCHMARK_CAPTURE(token_values, accented, bench::ACCENTED);
BENCHMARK_CAPTURE(token_values, mixed_scripts, bench::MIXED_SCRIPTS);

} // namespace
