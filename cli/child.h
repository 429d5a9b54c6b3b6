// Programs that velmo starts.
#ifndef VELMO_CLI_CHILD_H
#define VELMO_CLI_CHILD_H

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace velmo::cli {

// The environment as velmo was given it, before it has prepared anything in it for its own
// calls. To be called once before that.
const std::map<std::string, std::string>& given_environment();

class Child {
public:
    enum class Place {
        ours,   // shares our process group and standard input: a part of us
        its_own // a process group of its own, ended with us; nothing to read from a
                // terminal
    };

    // Starts a command, found in the path, with the environment that we were given and the
    // additions to it. Throws Failure when it cannot be executed.
    Child(const std::vector<std::string>& command, Place place,
          const std::map<std::string, std::string>& additions = {});

    // Ends it, and waits for that.
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // Sends a signal to it, and to all of its group when that is its own.
    void signal(int number) const;

    // Readable from when it has ended, for poll().
    int descriptor() const { return pidfd; }

    // Its exit status, or 128 and the number of the signal that ended it; waits for it.
    // What is left of its own group is ended.
    int wait();

private:
    pid_t pid = -1;
    bool leads_group;
    int pidfd = -1;
    std::optional<int> status;
};

} // namespace velmo::cli

#endif
