// An input for what reads files.
#ifndef VELMO_TESTS_FUZZ_INPUT_FILE_H
#define VELMO_TESTS_FUZZ_INPUT_FILE_H

#include <fstream>
#include <stdexcept>
#include <string>

#include "tests/support/temporary_folder.h"

namespace velmo::tests {

// A file in a folder of its own.
class InputFile {
public:
    explicit InputFile(const std::string& name) : file(folder.path() / name) {}

    void write(const std::string& content) const
    {
        std::ofstream stream(file, std::ios::binary | std::ios::trunc);
        if (!(stream << content).flush())
            throw std::runtime_error("cannot write " + file.string());
    }

    std::filesystem::path path() const { return file; }
    std::filesystem::path parent() const { return folder.path(); }

private:
    TemporaryFolder folder;
    const std::filesystem::path file;
};

} // namespace velmo::tests

#endif
