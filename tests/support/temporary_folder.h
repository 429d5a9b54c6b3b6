// A folder that goes with its object.
#ifndef VELMO_TESTS_SUPPORT_TEMPORARY_FOLDER_H
#define VELMO_TESTS_SUPPORT_TEMPORARY_FOLDER_H

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace velmo::tests {

// Of mode 0700, with a short path: socket names are limited to 107 bytes.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string name =
            (std::filesystem::temp_directory_path() / "velmo-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("cannot create " + name);
        folder = name;
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return folder; }

private:
    std::filesystem::path folder;
};

} // namespace velmo::tests

#endif
