#include "scl/crc/scl_crc64.hpp"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

// A short word, a long one, a block of a file.
void crc64(benchmark::State& state) {
    const std::vector<char> bytes(static_cast<std::size_t>(state.range(0)), 'x');
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            scl::Scl_crc64::calculate(bytes.data(), bytes.size(), scl::Scl_crc64::INITIAL));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(crc64)->Arg(16)->Arg(32)->Arg(64 << 10);

} // namespace
