// How far a long command has got, for a person who looks on.
#ifndef VELMO_CLI_PROGRESS_H
#define VELMO_CLI_PROGRESS_H

#include <chrono>
#include <string>

namespace velmo::cli {

// A bar on standard error, when that is a terminal and the results do not go to one;
// nothing otherwise. It goes with this object.
class Progress {
public:
    // shown: false for none in any case. total: 0 when nobody knows.
    Progress(bool shown, std::string what, std::size_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void step(std::size_t count = 1);

private:
    void draw() const;

    bool shown;
    std::string what;
    std::size_t total;
    std::size_t done = 0;
    std::chrono::steady_clock::time_point last{};
};

} // namespace velmo::cli

#endif
