#include "cli/write_file.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include <unistd.h>

#include "cli/failure.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

namespace fs = std::filesystem;

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

std::error_code last_error()
{
    return {errno, std::generic_category()};
}

Failure cannot_write(const std::string& path, ExitStatus status, std::error_code error)
{
    return Failure(status, "cannot write " + in_quotes(path) + ": " + error.message());
}

// mode: as of fopen().
File open(const std::string& path, const fs::path& at, const char* mode)
{
    File file(std::fopen(at.c_str(), mode), std::fclose);
    if (!file)
        throw cannot_write(path, errno == ENOSPC || errno == EDQUOT ? failed : misused,
                           last_error());
    return file;
}

void fill(const std::string& path, File file, std::string_view bytes)
{
    if (std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size() ||
        std::fflush(file.get()) != 0)
        throw cannot_write(path, failed, last_error());
    if (std::fclose(file.release()) != 0)
        throw cannot_write(path, failed, last_error());
}

// A file that goes unless it has taken its place.
class Beside {
public:
    explicit Beside(const fs::path& its_target)
        : target(its_target),
          at(target.parent_path() / (".velmo-" + std::to_string(getpid())))
    {
    }
    Beside(const Beside&) = delete;
    Beside& operator=(const Beside&) = delete;
    ~Beside()
    {
        std::error_code gone;
        fs::remove(at, gone);
    }

    const fs::path& path() const { return at; }

    void take_place(const fs::file_status& old, std::error_code& error) const
    {
        if (fs::exists(old))
            fs::permissions(at, old.permissions(), error);
        if (!error)
            fs::rename(at, target, error);
    }

private:
    fs::path target, at;
};

} // namespace

void write_file(const std::string& path, std::string_view bytes)
{
    std::error_code error;
    const fs::file_status old = fs::status(path, error);
    const bool is_new = old.type() == fs::file_type::not_found;
    error.clear();
    const fs::path target = is_new ? fs::path(path) : fs::canonical(path, error);
    if (error || (!is_new && !fs::is_regular_file(old)))
        return fill(path, open(path, path, "wbe"), bytes);
    if (!is_new && access(path.c_str(), W_OK) != 0)
        throw cannot_write(path, misused, last_error());
    const Beside beside(target);
    fill(path, open(path, beside.path(), "wbxe"), bytes);
    beside.take_place(old, error);
    if (error)
        throw cannot_write(path, failed, error);
}

} // namespace velmo::cli
