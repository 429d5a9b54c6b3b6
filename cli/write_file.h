// Files that commands write.
#ifndef VELMO_CLI_WRITE_FILE_H
#define VELMO_CLI_WRITE_FILE_H

#include <string>
#include <string_view>

namespace velmo::cli {

// Writes all of a file, or nothing: what was there before stays until the new one is
// complete. Devices and pipes are written to as they are. Throws Failure: misuse where the
// path is no file that can be written, else a failure such as a full disk.
void write_file(const std::string& path, std::string_view bytes);

} // namespace velmo::cli

#endif
