#include "server/store/data_folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <system_error>

#include "server/store/database.h"

namespace velmo::store {

namespace fs = std::filesystem;

std::string file_name(const std::string& server)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string name;
    for (const char c : server) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = byte < 0x80 && (std::isalnum(byte) || c == '-' || c == '_' ||
                                           (c == '.' && !name.empty()));
        if (plain)
            name += c;
        else
            name += {'%', digits[byte >> 4], digits[byte & 0xF]};
    }
    return name;
}

fs::path in_folder(const fs::path& file)
{
    const fs::path folder = file.parent_path();
    std::error_code error;
    if (fs::create_directories(folder, error)) {
        fs::permissions(folder, fs::perms::owner_all, error);
        sync_folder(folder / "..");
    }
    if (error)
        throw StoreError(file, "cannot create its folder: " + error.message());
    return file;
}

void sync_folder(const fs::path& folder)
{
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool synced = descriptor >= 0 && fsync(descriptor) == 0;
    const int error = errno;
    if (descriptor >= 0)
        close(descriptor);
    if (!synced)
        throw StoreError(folder, std::generic_category().message(error));
}

} // namespace velmo::store
