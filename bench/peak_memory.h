// How much memory a process has needed at most.
#ifndef VELMO_BENCH_PEAK_MEMORY_H
#define VELMO_BENCH_PEAK_MEMORY_H

#include <sys/types.h>

#include <fstream>
#include <stdexcept>
#include <string>

namespace velmo::bench {

// Bytes that a process has in memory, of a field of /proc/PID/status.
inline double memory_of(pid_t process, const std::string& field)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    std::string word;
    while (status >> word)
        if (word == field + ":") {
            double kilobytes = 0;
            status >> kilobytes;
            return kilobytes * 1024;
        }
    throw std::runtime_error("there is no " + field + " of the process");
}

// From its construction on.
class PeakMemory {
public:
    explicit PeakMemory(pid_t of_process) : process(of_process)
    {
        std::ofstream("/proc/" + std::to_string(process) + "/clear_refs") << 5;
        before = memory_of(process, "VmRSS");
    }

    double peak() const { return memory_of(process, "VmHWM"); }
    double grown() const { return peak() - before; }

private:
    const pid_t process;
    double before;
};

} // namespace velmo::bench

#endif
