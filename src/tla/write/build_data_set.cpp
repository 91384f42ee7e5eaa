#include "tla/write/build_data_set.hpp"

#include "tla/write/data_set_generator.hpp"
#include "tla/write/header_writer.hpp"
#include "tla/write/record_collector.hpp"
#include "tla/write/record_file.hpp"

namespace tla {

namespace {

// The stream lets go of the scratch file before that is read.
Tla_build_result read_input(const Tla_build_plan& plan, scl::Scl_buffered_istream& in,
                            Record_file& records, Record_collector& collector,
                            scl::Scl_status& status) {
    scl::Scl_ostream out(records);
    Tla_record_processor processor(plan.fields, plan.key_positions, &collector);
    Tla_build_result result;
    result.reading = Tla_record_reader(processor, out).read_records(in, status);
    result.wrapped = processor.wrapped_records();
    in.detach();
    out.detach(status);
    return result;
}

} // namespace

// One pass over the text makes the records, the pairs of the first key and, in the output, a copy
// of the records; what follows only puts tables behind them.
Tla_build_result build_data_set(const Tla_build_plan& plan, scl::Scl_buffered_istream& in,
                                scl::Scl_buffer& scratch, scl::Scl_buffer& output,
                                scl::Scl_status& status) {
    const Tla_header_writer header(plan.fields);
    Record_collector collector(header, plan.key_names.front(), in.size(status));
    Record_file records(scratch, output, header.header_end());
    Tla_build_result result = read_input(plan, in, records, collector, status);
    if (result.reading != Tla_read_result::finished || !status.ok()) {
        records.empty_output();
        return result;
    }
    records.settle();
    // Counted apart: when fewer can be read again than were made, the caller says so.
    result.line_count = collector.record_count();
    const Records_made made{collector, records};
    result.record_count =
        write_data_set_file(plan.key_names, header, scratch, &made, output, status);
    return result;
}

} // namespace tla
