#include "tests/install/installation.h"

#include <algorithm>
#include <stdexcept>

namespace velmo::tests {

namespace fs = std::filesystem;

namespace {

// The manifest of what the build's user has installed stays as it was.
class KeptManifest {
public:
    KeptManifest()
    {
        if (fs::exists(manifest))
            fs::copy_file(manifest, kept);
    }
    ~KeptManifest()
    {
        std::error_code ignored;
        fs::remove(manifest, ignored);
        if (fs::exists(kept, ignored))
            fs::copy_file(kept, manifest, ignored);
    }
    KeptManifest(const KeptManifest&) = delete;
    KeptManifest& operator=(const KeptManifest&) = delete;

    const fs::path manifest = fs::path(BUILD) / "install_manifest.txt";

private:
    TemporaryFolder folder;
    const fs::path kept = folder.path() / "kept";
};

} // namespace

std::string output_of(const Process::Command& command,
                      const Process::Environment& environment)
{
    Process process(command, environment);
    if (process.wait() != 0)
        throw std::runtime_error(command[0] + ":\n" + process.out() + process.err());
    return process.out();
}

Installation::Installation(bool destdir)
    : environment{{"DESTDIR", destdir ? (folder.path() / "root").string() : ""}},
      files(destdir ? folder.path() / "root/opt" : folder.path() / "prefix")
{
    const KeptManifest kept;
    output_of({CMAKE, "--install", BUILD, "--prefix", destdir ? "/opt" : files.string()},
              environment);
    fs::copy_file(kept.manifest, folder.path() / "install_manifest.txt");
}

std::vector<std::string> Installation::listing() const
{
    std::vector<std::string> found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(files))
        if (entry.is_symlink() || !entry.is_directory())
            found.push_back(entry.path().lexically_relative(files));
    std::sort(found.begin(), found.end());
    return found;
}

void Installation::uninstall() const
{
    output_of({CMAKE, "-DBUILD=" + folder.path().string(), "-P", UNINSTALL}, environment);
}

} // namespace velmo::tests
