// In place of libFuzzer, where the compiler has none: goes through inputs that are kept.
//
//     NAME_fuzz FOLDER

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* count, char*** arguments);

// For targets that mutate by themselves: nobody asks them to.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t*, std::size_t size, std::size_t)
{
    return size;
}

namespace fs = std::filesystem;

namespace {

std::vector<std::uint8_t> content(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void replay(const fs::path& folder)
{
    std::vector<fs::path> files(fs::directory_iterator(folder), fs::directory_iterator{});
    std::sort(files.begin(), files.end());
    if (files.empty())
        throw std::runtime_error("no inputs in " + folder.string());
    for (const fs::path& file : files) {
        std::printf("%s\n", file.c_str());
        std::fflush(stdout); // the last line is the one to look at
        const std::vector<std::uint8_t> input = content(file);
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", arguments[0]);
        return 2;
    }
    try {
        if (LLVMFuzzerInitialize)
            LLVMFuzzerInitialize(&count, &arguments);
        replay(arguments[1]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
