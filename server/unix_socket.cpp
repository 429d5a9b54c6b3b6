#include "server/unix_socket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace velmo::server {

namespace {

// Room in a socket's address, with the NUL.
constexpr std::size_t max_path_bytes = sizeof(sockaddr_un::sun_path) - 1;

std::vector<std::string> candidate_folders()
{
    std::vector<std::string> folders;
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime && *runtime == '/')
        folders.push_back(std::string(runtime) + "/velmo");
    if (geteuid() == 0)
        folders.push_back("/run/velmo");
    folders.push_back("/tmp/velmo-" + std::to_string(geteuid()));
    return folders;
}

std::string file_name(const std::string& text)
{
    std::string name = text;
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '.' && c != '-')
            c = '_';
    return name;
}

bool somebody_answers(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), max_path_bytes);
    const int probe = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (probe < 0)
        return false;
    const bool connected =
        connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ||
        errno == EAGAIN; // its queue is full
    close(probe);
    return connected;
}

// The socket of a server whose port was unknown is named after its process.
constexpr const char* process_mark = "pid-";
constexpr const char* extension = ".sock";

// The process that a socket of that kind belongs to, or none.
std::optional<pid_t> process_of(const std::string& file)
{
    const std::size_t mark = file.rfind(process_mark);
    if (mark == std::string::npos || std::filesystem::path(file).extension() != extension)
        return std::nullopt;
    const std::string number =
        std::filesystem::path(file.substr(mark + std::strlen(process_mark))).stem();
    const bool digits = !number.empty() && number.size() < 10 &&
                        number.find_first_not_of("0123456789") == std::string::npos;
    return digits ? std::optional<pid_t>(std::stoi(number)) : std::nullopt;
}

// Removes the sockets that killed servers have left: nobody else does, since no server
// gets the same name again. A live process may be about to listen; a foreign one, in
// another container, answers.
void remove_stale_sockets(const std::string& folder)
{
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
        const auto process = process_of(entry.path().filename());
        if (process && entry.is_socket(ignored) && kill(*process, 0) != 0 &&
            errno == ESRCH && !somebody_answers(entry.path()))
            unlink(entry.path().c_str());
    }
}

} // namespace

bool is_private_folder(const std::string& path)
{
    if (mkdir(path.c_str(), 0700) != 0 && errno != EEXIST)
        return false;
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0)
        return false;
    struct stat found;
    const bool known = fstat(folder, &found) == 0;
    close(folder);
    return known && found.st_uid == geteuid() && (found.st_mode & 07777) == 0700;
}

std::optional<std::string> default_socket_path(const std::string& server,
                                               const orb::Endpoint& endpoint)
{
    // A port that is yet unknown tells servers apart no more than it returns.
    const std::string place = endpoint.port
                                  ? endpoint.host + "-" + std::to_string(endpoint.port)
                                  : process_mark + std::to_string(getpid());
    const std::string name = file_name(server + "-" + place + extension);
    for (const std::string& folder : candidate_folders()) {
        const std::string path = folder + "/" + name;
        if (path.size() > max_path_bytes || !is_private_folder(folder))
            continue;
        remove_stale_sockets(folder);
        return path;
    }
    return std::nullopt;
}

void check_socket_path(const std::string& path)
{
    if (path.size() > max_path_bytes)
        throw std::runtime_error("the path " + path + " is too long for a unix socket");
    struct stat found;
    if (lstat(path.c_str(), &found) != 0)
        return;
    if (!S_ISSOCK(found.st_mode))
        throw std::runtime_error(path + " exists and is no unix socket");
    if (somebody_answers(path))
        throw std::runtime_error("another program listens at the unix socket " + path);
}

void SocketFile::remove()
{
    if (!path.empty())
        unlink(path.c_str());
    path.clear();
}

} // namespace velmo::server
