#include "records/input/tla_field_copies.hpp"
#include "records/input/tla_record_processor.hpp"
#include "records/values/tla_formatters.hpp"
#include "sample_text.hpp"
#include "scl/text/scl_string.hpp"

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

constexpr std::u16string_view CARD = u"4111-1111-1111-1111";

// First name, surname and card number from text to token values.
void whole_record(benchmark::State& state, std::u16string_view first, std::u16string_view surname) {
    const std::vector<tla::Field_descriptor> columns = {
        {u"FirstName", tla::Tla_simple_formatter::TYPE_ID},
        {u"Surname", tla::Tla_simplenc_formatter::TYPE_ID},
        {u"CardNum", tla::Tla_ccnum_formatter::TYPE_ID}};
    const std::vector<std::uint64_t> keys = {1};
    tla::Tla_record_processor processor(columns, keys, nullptr);
    tla::Tla_field_copies fields;
    for (const std::u16string_view text : {first, surname, CARD}) {
        std::string narrow;
        scl::scl_wtos(text, narrow, true);
        fields.add(narrow);
    }
    const tla::Tla_record_text record = fields.fields();
    scl::Scl_status status;
    Discarding_buffer buffer;
    scl::Scl_ostream out(buffer);
    for (auto _ : state) {
        processor.process(record, out, status);
    }
    if (!status.ok()) state.SkipWithError("a record was refused");
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_CAPTURE(whole_record, ascii, u"George", bench::WORD);
BENCHMARK_CAPTURE(whole_record, accented, u"Ren\u00E9e", bench::ACCENTED);
BENCHMARK_CAPTURE(whole_record, mixed_scripts, bench::CYRILLIC, bench::MIXED_SCRIPTS);

} // namespace
