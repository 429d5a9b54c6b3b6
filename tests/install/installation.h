// A copy of this build, installed for a test.
#ifndef VELMO_TESTS_INSTALL_INSTALLATION_H
#define VELMO_TESTS_INSTALL_INSTALLATION_H

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace velmo::tests {

class Installation {
public:
    // In a prefix of its own; with destdir true below such a DESTDIR, with the prefix /opt.
    // Throws std::runtime_error when it fails.
    explicit Installation(bool destdir = false);

    // Where the files are.
    const std::filesystem::path& root() const { return files; }
    std::string path(const std::string& file) const { return files / file; }

    // Of each file and link, below root(), sorted.
    std::vector<std::string> listing() const;

    void uninstall() const;

    // What a tree of folders without a file has left.
    bool gone() const { return !std::filesystem::exists(files) || is_empty(files); }

private:
    TemporaryFolder folder;
    Process::Environment environment;
    std::filesystem::path files;
};

// Runs a command to its end and gives what it wrote. Throws std::runtime_error, with that,
// when it fails.
std::string output_of(const Process::Command& command,
                      const Process::Environment& environment = {});

} // namespace velmo::tests

#endif
