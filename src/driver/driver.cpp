#include "driver/driver.hpp"

#include "driver/console.hpp"
#include "driver/interrupts.hpp"
#include "driver/option_scanner.hpp"
#include "records/values/tla_status_codes.hpp"
#include "scl/text/scl_string.hpp"
#include "tla/upgrade/upgrade_data_set.hpp"
#include "tla/write/data_set_generator.hpp"
#include "tla/write/scratch_file.hpp"

#include <cctype>
#include <cstdio>

namespace driver {

namespace {

// A colon behind a letter: it takes an argument.
constexpr std::string_view OPTION_LETTERS = "k:s:i:o:hu";

// Names are UTF-16 inside, as the messages that carry them.
std::u16string wide(std::string_view narrow) {
    std::u16string text;
    scl::scl_string_append(text, narrow);
    return text;
}

// Always false, so that a caller can tell and give up in one statement.
bool fail_with_usage(const char* message) {
    print_message(message);
    print_usage();
    return false;
}

} // namespace

// An exception skips the reports, which would remove a half-written output. So it is removed here.
Driver::~Driver() {
    if (output_given_ && std::uncaught_exceptions() > exceptions_before_) remove_output();
}

// Order of the checks: an upgrade first, since it names less; whatever is left over is a wrong
// command line, however it came to be one.
int Driver::run(int argument_count, const char* const* arguments) {
    if (argument_count < 2) {
        print_usage();
        return EXIT_FAULT;
    }
    if (!take_options(argument_count, arguments)) return EXIT_FAULT;
    // An upgrade takes everything from the old file: with a key or a schema, -u is ignored.
    const bool builds = !key_names_.empty() && !schema_.fields.empty();
    const bool names_nothing = key_names_.empty() && schema_.fields.empty();
    if (input_given_ && output_given_ && upgrade_asked_for_ && names_nothing) return upgrade();
    if (input_given_ && output_given_ && builds) return build();
    (void)fail_with_usage("Invalid number of arguments.");
    return EXIT_FAULT;
}

bool Driver::take_options(int argument_count, const char* const* arguments) {
    for (;;) {
        const char letter = next_option(argument_count, arguments, OPTION_LETTERS);
        if (letter == NO_MORE_OPTIONS) return true;
        if (!take_option(letter)) return false;
    }
}

// Options act in their order: -o creates its file at once. So a fault in a later option leaves an
// empty output file behind.
bool Driver::take_option(char letter) {
    // Letters in either case: -K is -k.
    switch (std::tolower(static_cast<unsigned char>(letter))) {
    case 'h':
        print_message("");
        print_usage();
        return false;
    case 'i':
        return open_input(option_argument);
    case 'k':
        take_key(option_argument);
        return true;
    case 'o':
        return open_output(option_argument);
    case 's':
        return take_schema(option_argument);
    case 'u':
        upgrade_asked_for_ = true;
        return true;
    default:
        return fail_with_usage("Commmand line invalid.");
    }
}

// Checked against the scratch file before it is opened: opening that later would destroy the input.
bool Driver::open_input(std::string_view name) {
    input_name_ = name;
    const bool usable = !tla::tla_leads_to_scratch(input_name_);
    if (usable) {
        input_.open(wide(name), scl::Scl_file_open::existing, scl::Scl_file_access::read,
                    scl::SCL_FILE_PLAIN, scl::SCL_FILE_FRONT_TO_BACK, status_);
    }
    if (!usable || status_.has_failed()) return fail_with_usage("Input Filename Invalid.");
    input_given_ = true;
    return true;
}

// As for the input: an output of the scratch file's name would be replaced by it.
bool Driver::open_output(std::string_view name) {
    output_name_ = name;
    const bool usable = !tla::tla_would_be_scratch(output_name_);
    if (usable) create_output(name);
    if (!usable || !status_.ok()) return fail_with_usage("Output Filename Invalid.");
    output_given_ = true;
    return true;
}

// Signals wait, so that an interrupted run removes the file if it created it, and only then: an
// existing file, which is refused, must stay.
void Driver::create_output(std::string_view name) {
    const Signals_wait hold;
    output_.open(wide(name), scl::Scl_file_open::create, scl::Scl_file_access::read_write,
                 scl::SCL_FILE_PLAIN, scl::SCL_FILE_FRONT_TO_BACK, status_);
    if (status_.ok()) remove_when_interrupted(output_name_);
}

// An empty list of fields means that no schema was given, so a second -s is only seen when the
// first named a field.
bool Driver::take_schema(std::string_view text) {
    if (!schema_.fields.empty()) return fail_with_usage("Multiple schemas detected.");
    if (parse_schema(text, schema_)) return true;
    return fail_with_usage("Invalid schema format, see usage.");
}

// Not checked here: the schema may come later on the command line.
void Driver::take_key(std::string_view name) {
    key_names_.push_back(wide(name));
}

// -i opened the input to check that it can be opened; the upgrade opens it again, by its name.
int Driver::upgrade() {
    input_.close(status_);
    tla::upgrade_data_set(input_name_, output_, status_);
    close_output();
    // Duplicates are not reported in this mode. Records that are missing or read differently from
    // how they were written are: nobody would know.
    const bool warned = status_.contains_value(tla::TLA_STATUS_COUNT_WRAPPED) ||
                        status_.contains_value(tla::TLA_STATUS_RECORDS_LOST);
    if (!status_.ok() || warned) print_status(status_);
    if (status_.ok()) return EXIT_OK;
    remove_output();
    return EXIT_FAULT;
}

// The three results of reading end differently: a fault of the text is told with the usage, and the
// output stays, empty. Whatever fails later removes it.
int Driver::build() {
    scl::Scl_buffered_istream in(input_, status_);
    scl::Scl_file_buffer records;
    tla::tla_open_scratch_file(records, status_);
    if (!status_.ok()) return EXIT_OK; // silent: nothing was read, and the output stays empty
    const tla::Tla_build_result result = build_from(in, records);
    switch (result.reading) {
    case tla::Tla_read_result::field_count_mismatch:
        (void)fail_with_usage("Field count does not match the schema.");
        return EXIT_FAULT;
    case tla::Tla_read_result::invalid_line_ending:
        (void)fail_with_usage("Invalid line ending in input file.");
        return EXIT_FAULT;
    case tla::Tla_read_result::finished:
        break;
    }
    close_output();
    // Neither a column of unknown type nor a value with more tokens than its count can hold is an
    // error, but records cannot be read back from such a file: it is kept, with a warning.
    if (status_.ok()) {
        tla::tla_warn_of_wrapped_records(result.wrapped, status_);
        tla::tla_warn_of_lost_records(result.record_count, result.line_count, status_);
    }
    return report_generation();
}

tla::Tla_build_result Driver::build_from(scl::Scl_buffered_istream& in,
                                         scl::Scl_file_buffer& records) {
    std::vector<std::uint64_t> key_positions;
    resolve_keys(schema_.fields, key_names_, key_positions);
    const tla::Tla_build_plan plan{
        .fields = schema_.fields, .key_names = key_names_, .key_positions = key_positions};
    return tla::build_data_set(plan, in, records, output_, status_);
}

// The checksum may be right and a warning pushed: then the file stays.
int Driver::report_generation() {
    if (status_.ok()) {
        if (status_.is_warning()) {
            print_message("Warnings:");
            print_status(status_);
        }
        return EXIT_OK;
    }
    print_message("Failed to generate file.");
    print_status(status_);
    remove_output();
    return EXIT_FAULT;
}

// Called before success is reported: the system may report a write error only at closing.
void Driver::close_output() {
    output_.close(status_);
}

void Driver::remove_output() {
    output_.discard();
    // If this fails, a file stays whose checksum is wrong, and no reader accepts it.
    const Signals_wait hold;
    (void)std::remove(output_name_.c_str());
    remove_when_interrupted({}); // from here on, a file of that name belongs to another run
}

} // namespace driver
