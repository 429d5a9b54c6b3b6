#include "util/settings_source.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

#include "util/settings_values.h"

namespace velmo::settings {
namespace {

class Descriptor {
public:
    explicit Descriptor(int descriptor) : number(descriptor) {}
    ~Descriptor()
    {
        if (number >= 0)
            close(number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return number; }

private:
    int number;
};

[[noreturn]] void refuse(const std::string& why)
{
    throw Fault(1, "the file cannot be read: " + why);
}

// What the process or the system lacks has nothing to do with the file.
bool is_shortage(int error)
{
    return error == EMFILE || error == ENFILE || error == ENOMEM;
}

[[noreturn]] void refuse_for(int error)
{
    const std::string reason = std::generic_category().message(error);
    if (is_shortage(error))
        throw Shortage(1, "the file cannot be read: " + reason);
    refuse(reason);
}

[[noreturn]] void refuse_size()
{
    refuse("it is larger than " + std::to_string(max_file_bytes >> 20) + " MiB");
}

// NULL and "" are alike.
std::string variable(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

// "" when the environment does not tell.
std::string users_configuration()
{
    const std::string folder = variable("XDG_CONFIG_HOME");
    if (!folder.empty() && folder.front() == '/') // others are not valid there
        return folder;
    const std::string home = variable("HOME");
    return home.empty() ? "" : home + "/.config";
}

// A link that leads nowhere is there, as is what may not be looked at: passing
// over it would silently mean other servers.
bool is_there(const std::string& path)
{
    struct stat ignored;
    return lstat(path.c_str(), &ignored) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

bool same(const timespec& a, const timespec& b)
{
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

} // namespace

Place find_file()
{
    const std::string named = variable("VELMO_SETTINGS");
    if (!named.empty())
        return {named, "environment variable VELMO_SETTINGS"};

    const std::string folder = users_configuration();
    if (const Place users{folder + "/velmo/velmo.xml", "user's configuration"};
        !folder.empty() && is_there(users.path))
        return users;
    if (const Place systems{"/etc/velmo/velmo.xml", "system's configuration"};
        is_there(systems.path))
        return systems;
    return {"", "no file"};
}

std::string text_of(const std::string& path)
{
    // Not blocking: the open of a pipe would wait for its other end.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat found;
    if (file.get() < 0 || fstat(file.get(), &found) != 0)
        refuse_for(errno);
    if (!S_ISREG(found.st_mode))
        refuse("it is not a regular file");
    if (static_cast<std::size_t>(found.st_size) > max_file_bytes)
        refuse_size();

    std::string text;
    char block[16384];
    for (;;) {
        const ssize_t count = read(file.get(), block, sizeof block);
        if (count == 0)
            return text;
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            refuse_for(errno);
        text.append(block, static_cast<std::size_t>(count));
        if (text.size() > max_file_bytes) // it has grown since
            refuse_size();
    }
}

Stamp::Stamp(const std::string& path)
{
    if (stat(path.c_str(), &file) != 0)
        error = errno;
}

bool Stamp::operator==(const Stamp& other) const
{
    // The mode as well: the times are coarse.
    return error == other.error && file.st_dev == other.file.st_dev &&
           file.st_ino == other.file.st_ino && file.st_mode == other.file.st_mode &&
           file.st_size == other.file.st_size && same(file.st_mtim, other.file.st_mtim) &&
           same(file.st_ctim, other.file.st_ctim);
}

} // namespace velmo::settings
