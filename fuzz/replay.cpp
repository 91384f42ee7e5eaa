// Gives every file of the folders named to the fuzz target, once. Fails when there is none.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argument_count, char** arguments) {
    std::size_t files = 0;
    const std::span<char*> folders(arguments, static_cast<std::size_t>(argument_count));
    for (const char* const folder : folders.subspan(1)) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            std::ifstream in(entry.path(), std::ios::binary);
            const std::vector<char> bytes(std::istreambuf_iterator<char>(in), {});
            const std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
            LLVMFuzzerTestOneInput(data.data(), data.size());
            ++files;
        }
    }
    std::printf("%zu files\n", files);
    return files == 0 ? 1 : 0;
}
