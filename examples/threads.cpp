// Threads: several workers take jobs from one port.
//
//     threads [WORKERS [JOBS]]     4 workers, 100 jobs
//
// Every function of the library may be called by any thread at any time; there is nothing
// to lock. A thread that waits for a packet holds up nobody else.
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "example.h"

namespace {

constexpr unsigned int jobs = 1500; // handles
constexpr unsigned int results = 1501;
constexpr unsigned int no_wait = 0;
constexpr unsigned int second = 1000;

bool create(const char* name, unsigned int handle, unsigned int capacity)
{
    const int code = vl_create_port(name, handle, capacity, nullptr, nullptr);
    return check(name, there_by_now(code, OBJECT_ALREADY_EXSIT)) == VL_OK;
}

bool send(unsigned int port, std::int64_t number)
{
    return check("send", vl_send_packet(port, &number, sizeof number, second, nullptr,
                                        nullptr)) == VL_OK;
}

// All packets are of one length here, so a buffer will do.
int receive(unsigned int port, std::int64_t& number, unsigned int wait)
{
    return vl_receive_packet(port, nullptr, &number, sizeof number, wait, nullptr, nullptr);
}

// Each job is handed to one of the workers, whoever asks first.
void work(const std::atomic<bool>& done, std::atomic<int>& taken)
{
    std::int64_t number = 0;
    while (!done) {
        const int code = receive(jobs, number, second);
        if (code == TIME_OUT)
            continue; // time to look whether it is done
        if (check("receive a job", code) != VL_OK || !send(results, number * number))
            return;
        ++taken;
    }
}

} // namespace

int main(int argc, char** argv)
{
    begin();
    const long workers = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 4;
    const long count = argc > 2 ? std::strtol(argv[2], nullptr, 10) : 100;
    if (workers < 1 || count < 1 || !create("example jobs", jobs, 0) ||
        !create("example results", results, static_cast<unsigned int>(count)))
        return EXIT_FAILURE;

    std::int64_t number = 0;
    while (receive(jobs, number, no_wait) == VL_OK || // what an earlier run has left
           receive(results, number, no_wait) == VL_OK) {
    }

    std::atomic<bool> done{false};
    std::vector<std::atomic<int>> taken(static_cast<std::size_t>(workers));
    std::vector<std::thread> threads;
    threads.reserve(taken.size());
    for (std::atomic<int>& counter : taken)
        threads.emplace_back(work, std::cref(done), std::ref(counter));

    bool good = true;
    std::int64_t sum = 0;
    for (long i = 1; i <= count && good; ++i)
        good = send(jobs, i);
    for (long i = 1; i <= count && good; ++i) {
        good = check("receive a result", receive(results, number, 10 * second)) == VL_OK;
        sum += number;
    }
    done = true;
    for (std::thread& thread : threads)
        thread.join();

    int total = 0;
    for (const std::atomic<int>& counter : taken)
        total += counter;
    std::printf("%d jobs done by %ld workers, the sum of the squares is %lld\n", total,
                workers, static_cast<long long>(sum));
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
