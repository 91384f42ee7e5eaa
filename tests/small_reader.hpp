#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace test {

// Reads data set files by docs/file-format.md alone: it shares no line with the program, so that a
// fault in the one does not hide in the other. All offsets are bytes from the start of the file.
class Small_reader {
public:
    using Values = std::vector<std::uint64_t>;

    struct Field {
        std::string name;
        std::string type;
    };
    using Pair = std::pair<std::uint64_t, std::uint64_t>; // a hash and a record's offset
    struct Table {
        std::string name;
        std::vector<Pair> pairs;
    };

    // Checks every rule of the document; throws std::runtime_error at the first that is broken.
    explicit Small_reader(std::string file);

    [[nodiscard]] const std::vector<Field>& fields() const { return fields_; }
    [[nodiscard]] const std::vector<std::uint64_t>& records() const { return records_; }
    [[nodiscard]] const std::vector<Table>& tables() const { return tables_; }

    // The token values of one field of the record at this offset, and as they are in the file.
    [[nodiscard]] Values values(std::uint64_t record, std::size_t field) const;
    [[nodiscard]] std::string_view value_bytes(std::uint64_t record, std::size_t field) const;
    // CRC-64/XZ, and a token's value by docs/text.md.
    [[nodiscard]] static std::uint64_t crc(std::string_view bytes);
    [[nodiscard]] static std::uint64_t token(std::u16string_view text);

private:
    void read_header();
    void read_fields();
    void read_records();
    void read_table();
    [[nodiscard]] std::vector<Pair> expected_pairs(std::size_t field) const;

    [[nodiscard]] std::uint64_t little(std::uint64_t at, unsigned size) const;
    [[nodiscard]] std::uint64_t big(std::uint64_t at, unsigned size) const;
    [[nodiscard]] std::string_view bytes(std::uint64_t at, std::uint64_t size) const;
    [[nodiscard]] std::string until(char end);
    [[nodiscard]] std::string_view record_bytes(std::uint64_t record) const;
    void skip_zeros();

    std::string file_;
    std::uint64_t position_ = 0;
    std::uint64_t key_table_offset_ = 0;
    std::uint64_t key_count_ = 0;
    std::uint64_t record_count_ = 0;
    std::vector<Field> fields_;
    std::vector<std::uint64_t> records_;
    std::vector<Table> tables_;
};

} // namespace test
