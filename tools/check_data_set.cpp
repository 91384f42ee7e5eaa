// check_data_set FILE: checks a data set file by docs/file-format.md and says what it holds.

#include "small_reader.hpp"

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>

int main(int count, char** arguments) {
    try {
        if (count != 2) throw std::runtime_error("usage: check_data_set FILE");
        std::ifstream in(arguments[1], std::ios::binary);
        if (!in) throw std::runtime_error(std::string("cannot open ") + arguments[1]);
        const test::Small_reader file(std::string(std::istreambuf_iterator<char>(in), {}));
        std::cout << "records: " << file.records().size() << '\n';
        for (const auto& field : file.fields()) {
            std::cout << "field: " << field.name << ", " << field.type << '\n';
        }
        for (const auto& table : file.tables()) {
            std::cout << "key: " << table.name << ", pairs: " << table.pairs.size() << '\n';
        }
        std::cout << "All rules hold.\n";
        return 0;
    } catch (const std::exception& broken) {
        std::cerr << "check_data_set: not so: " << broken.what() << '\n';
        return 1;
    }
}
