#include "records/tla_formatters.hpp"
#include "records/tla_record_processor.hpp"
#include "sample_text.hpp"

#include <benchmark/benchmark.h>

namespace {

// Takes what is written and forgets it, so that a record's own way is measured and no memory.
class Discarding_buffer final : public scl::Scl_buffer {
public:
    std::uint64_t size(bool in_units, scl::Scl_status&) const override {
        return in_units ? size_ / 2 : size_;
    }
    std::size_t read_at(std::uint64_t, std::span<std::byte>, scl::Scl_status&) const override {
        return 0;
    }
    void write_at(std::uint64_t offset, std::span<const std::byte> bytes,
                  scl::Scl_status&) override {
        size_ = offset + bytes.size();
    }

private:
    std::uint64_t size_ = 0;
};

// First name, surname and card number from text to token values.
void whole_record(benchmark::State& state, std::u16string_view first, std::u16string_view surname) {
    const std::vector<tla::Formatter_type_id> types = {
        tla::tla_formatter_type_id_from_name("Simple"),
        tla::tla_formatter_type_id_from_name("SimpleNC"),
        tla::tla_formatter_type_id_from_name("CCNUMBER")};
    const std::vector<std::uint64_t> keys = {1};
    const std::vector<std::u16string> fields = {std::u16string(first), std::u16string(surname),
                                                u"4111-1111-1111-1111"};
    std::vector<std::u16string> record;
    tla::Tla_record_processor processor(types, keys);
    scl::Scl_status status;
    Discarding_buffer buffer;
    scl::Scl_ostream out(buffer, status, scl::Scl_eol::none);
    for (auto _ : state) {
        record = fields;
        processor.process(record, out, status);
    }
    if (!status.ok()) state.SkipWithError("a record was refused");
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_CAPTURE(whole_record, ascii, u"George", bench::WORD);
BENCHMARK_CAPTURE(whole_record, accented, u"Ren\u00E9e", bench::ACCENTED);
BENCHMARK_CAPTURE(whole_record, mixed_scripts, bench::CYRILLIC, bench::MIXED_SCRIPTS);

} // namespace
