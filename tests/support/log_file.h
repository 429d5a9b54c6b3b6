// The log of the test's own process, for tests of what the library logs.
#ifndef VELMO_TESTS_SUPPORT_LOG_FILE_H
#define VELMO_TESTS_SUPPORT_LOG_FILE_H

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "CQuilp.h"
#include "tests/support/temporary_folder.h"

namespace velmo::tests {

// Log lines of this process go to a file of their own. To be made before the first one.
class LogFile {
public:
    LogFile() { setenv("VELMO_LOG", ("file:" + path()).c_str(), 1); }

    std::string text() const
    {
        CQuilp::instance()->flush();
        std::ostringstream content;
        content << std::ifstream(path()).rdbuf();
        return content.str();
    }

private:
    std::string path() const { return (folder.path() / "log").string(); }

    TemporaryFolder folder;
};

} // namespace velmo::tests

#endif
