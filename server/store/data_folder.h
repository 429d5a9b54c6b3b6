// The folder in which a server keeps its files.
#ifndef VELMO_SERVER_STORE_DATA_FOLDER_H
#define VELMO_SERVER_STORE_DATA_FOLDER_H

#include <filesystem>
#include <string>

namespace velmo::store {

// A server's name as part of a file's. Servers of different names never share a file,
// whatever bytes the names have.
std::string file_name(const std::string& server);

// Creates the file's folder, for this user alone, if it is not there; gives the file.
// Throws StoreError.
std::filesystem::path in_folder(const std::filesystem::path& file);

// Returns when a new entry of the folder is safe on the disk. Throws StoreError.
void sync_folder(const std::filesystem::path& folder);

} // namespace velmo::store

#endif
