#pragma once

#include "driver/schema.hpp"
#include "scl/io/scl_file_buffer.hpp"
#include "scl/status/scl_status.hpp"
#include "tla/write/build_data_set.hpp"

#include <exception>
#include <string>
#include <string_view>
#include <vector>

namespace driver {

inline constexpr int EXIT_OK = 0;
inline constexpr int EXIT_FAULT = -1;

// One run of the program: its options, its files and its one status.
class Driver {
public:
    Driver() = default;
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;
    // Leaves no output file behind when an exception ends the run.
    ~Driver();

    // Takes UTF-8 arguments, the program's name first, and returns the exit status.
    [[nodiscard]] int run(int argument_count, const char* const* arguments);

private:
    // Each acts on one option and returns false when that ended the run with EXIT_FAULT.
    [[nodiscard]] bool take_options(int argument_count, const char* const* arguments);
    [[nodiscard]] bool take_option(char letter);
    [[nodiscard]] bool open_input(std::string_view name);
    [[nodiscard]] bool open_output(std::string_view name);
    [[nodiscard]] bool take_schema(std::string_view text);
    void take_key(std::string_view name);
    void create_output(std::string_view name);

    [[nodiscard]] int upgrade();
    [[nodiscard]] int build();
    [[nodiscard]] tla::Tla_build_result build_from(scl::Scl_buffered_istream& in,
                                                   scl::Scl_file_buffer& records);
    [[nodiscard]] int report_generation();
    void close_output();
    void remove_output();

    int exceptions_before_ = std::uncaught_exceptions();
    scl::Scl_status status_;
    std::vector<std::u16string> key_names_;
    Schema schema_;
    std::string input_name_;
    scl::Scl_file_buffer input_;
    bool input_given_ = false;
    std::string output_name_;
    scl::Scl_file_buffer output_;
    bool output_given_ = false;
    bool upgrade_asked_for_ = false;
};

} // namespace driver
