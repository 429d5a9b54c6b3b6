// Where the settings file is, its text, and whether it has been touched.
#ifndef VELMO_UTIL_SETTINGS_SOURCE_H
#define VELMO_UTIL_SETTINGS_SOURCE_H

#include <string>

#include <sys/stat.h>

namespace velmo::settings {

struct Place {
    std::string path;   // "" when there is no file
    std::string origin; // how it was found, for people
};

// The file that the environment names. A file that is named explicitly need not
// exist; one that exists, readable or not, hides those further down the list.
Place find_file();

// The text of a regular file of at most max_file_bytes; throws Fault. Anything
// else, a pipe or a device say, is refused without being waited for.
std::string text_of(const std::string& path);

// Tells whether a file has changed, come or gone since the stamp was taken.
class Stamp {
public:
    explicit Stamp(const std::string& path);
    bool operator==(const Stamp& other) const;

private:
    int error = 0; // why there is no file to be seen
    struct stat file {};
};

} // namespace velmo::settings

#endif
