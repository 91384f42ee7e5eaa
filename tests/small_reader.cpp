#include "small_reader.hpp"

#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>

namespace test {

namespace {

const std::set<std::string> TYPES = {"Simple", "SimpleNC", "CCNUMBER"};

void require(bool held, const std::string& rule) {
    if (!held) throw std::runtime_error(rule);
}

std::array<std::uint64_t, 256> make_crc_table() {
    std::array<std::uint64_t, 256> table{};
    for (std::uint64_t byte = 0; byte < table.size(); ++byte) {
        table[byte] = byte;
        for (int bit = 0; bit < 8; ++bit) { // the polynomial, lowest bit first
            table[byte] = (table[byte] >> 1) ^ ((table[byte] & 1) != 0 ? 0xC96C5795D7870F42 : 0);
        }
    }
    return table;
}

// The first digit is the highest.
std::uint64_t number(const std::string& digits) {
    std::uint64_t number = 0;
    for (const char digit : digits) {
        number = number << 8 | static_cast<unsigned char>(digit);
    }
    return number;
}

} // namespace

Small_reader::Small_reader(std::string file) : file_(std::move(file)) {
    read_header();
    read_fields();
    read_records();
    for (std::uint64_t table = 0; table < key_count_; ++table) {
        read_table();
    }
    require(position_ == file_.size(), "nothing stands behind the last key table");
}

std::uint64_t Small_reader::crc(std::string_view bytes) {
    static const std::array<std::uint64_t, 256> TABLE = make_crc_table();
    std::uint64_t value = ~std::uint64_t{0};
    for (const char byte : bytes) {
        value = TABLE[(value ^ static_cast<unsigned char>(byte)) & 0xFF] ^ (value >> 8);
    }
    return ~value;
}

std::uint64_t Small_reader::token(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return crc(bytes);
}

void Small_reader::read_header() {
    require(file_.size() >= 32, "a header of 32 bytes");
    require(file_.starts_with("KQZVDaSe"), "the magic");
    require(little(8, 8) == ~crc(bytes(16, file_.size() - 16)), "the checksum");
    key_table_offset_ = little(16, 8);
    require(little(24, 2) == 2, "version 2");
    key_count_ = little(26, 2);
    record_count_ = little(28, 4);
    position_ = 32;
}

void Small_reader::read_fields() {
    require(bytes(position_, 1)[0] != '\0', "a field list with at least one field");
    while (bytes(position_, 1)[0] != '\0') {
        const std::string descriptor = until('\0');
        const std::size_t end = descriptor.rfind('\n');
        require(end != std::string::npos, "0x0A in each descriptor");
        const Field field{descriptor.substr(0, end), descriptor.substr(end + 1)};
        const bool known = TYPES.contains(field.type) || (field.type.empty() && record_count_ == 0);
        require(known, "the name of a formatter type: " + field.type);
        for (const Field& other : fields_) {
            require(other.name != field.name, "no name twice: " + field.name);
        }
        fields_.push_back(field);
    }
    ++position_;
    skip_zeros();
}

void Small_reader::read_records() {
    require(position_ <= key_table_offset_, "key tables behind the field list");
    while (position_ < key_table_offset_) {
        records_.push_back(position_);
        for (std::size_t field = 0; field < fields_.size(); ++field) {
            position_ += 2 + 8 * big(position_, 2);
        }
        require(little(position_++, 1) == 0, "0x00 after each record's last field");
    }
    require(position_ == key_table_offset_, "key tables where the records end");
    require(records_.size() == record_count_, "as many records as the header says");
}

// What a table holds, and where it ends, follows from the records.
void Small_reader::read_table() {
    Table table;
    table.name = until('\0');
    skip_zeros();
    const auto field = std::find_if(fields_.begin(), fields_.end(),
                                    [&](const Field& one) { return one.name == table.name; });
    require(field != fields_.end(), "a field's name on each key table: " + table.name);
    for (const Pair& expected : expected_pairs(static_cast<std::size_t>(field - fields_.begin()))) {
        const Pair pair{little(position_, 8), little(position_ + 8, 8)};
        require(pair == expected, "the right pair " + std::to_string(table.pairs.size()) +
                                      " in key table " + table.name);
        table.pairs.push_back(pair);
        position_ += 16;
    }
    tables_.push_back(std::move(table));
}

std::vector<Small_reader::Pair> Small_reader::expected_pairs(std::size_t field) const {
    std::vector<Pair> all;
    for (const std::uint64_t record : records_) {
        all.push_back({crc(value_bytes(record, field)), record});
    }
    std::sort(all.begin(), all.end());
    const auto duplicate = [this](const Pair& one, const Pair& other) {
        return one.first == other.first && record_bytes(one.second) == record_bytes(other.second);
    };
    all.erase(std::unique(all.begin(), all.end(), duplicate), all.end());
    return all;
}

std::string_view Small_reader::record_bytes(std::uint64_t record) const {
    const std::string_view last = value_bytes(record, fields_.size() - 1);
    const auto end = static_cast<std::uint64_t>(last.data() + last.size() - file_.data());
    return bytes(record, end - record);
}

Small_reader::Values Small_reader::values(std::uint64_t record, std::size_t field) const {
    Values values;
    for (std::string_view left = value_bytes(record, field); !left.empty(); left.remove_prefix(8)) {
        values.push_back(number(std::string(left.substr(0, 8))));
    }
    return values;
}

std::string_view Small_reader::bytes(std::uint64_t at, std::uint64_t size) const {
    require(at <= file_.size() && size <= file_.size() - at, "nothing outside the file");
    return std::string_view(file_).substr(at, size);
}

std::uint64_t Small_reader::little(std::uint64_t at, unsigned size) const {
    const std::string_view digits = bytes(at, size);
    return number({digits.rbegin(), digits.rend()});
}

std::uint64_t Small_reader::big(std::uint64_t at, unsigned size) const {
    return number(std::string(bytes(at, size)));
}

std::string_view Small_reader::value_bytes(std::uint64_t record, std::size_t field) const {
    for (; field > 0; --field) {
        record += 2 + 8 * big(record, 2);
    }
    return bytes(record + 2, 8 * big(record, 2));
}

std::string Small_reader::until(char end) {
    const std::size_t found = file_.find(end, position_);
    require(found != std::string::npos, "an end to each name");
    std::string name = file_.substr(position_, found - position_);
    position_ = found + 1;
    return name;
}

void Small_reader::skip_zeros() {
    for (; position_ % 8 != 0; ++position_) {
        require(bytes(position_, 1)[0] == '\0', "zeros up to the multiple of 8");
    }
}

} // namespace test
