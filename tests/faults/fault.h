// What calls give while something is broken, and how they go on afterwards.
#ifndef VELMO_TESTS_FAULTS_FAULT_H
#define VELMO_TESTS_FAULTS_FAULT_H

#include <gtest/gtest.h>

#include <chrono>
#include <mutex>
#include <string>
#include <vector>

#include "tests/e2e/calls.h"
#include "tests/support/eventually.h"
#include "tests/support/log_file.h"
#include "tests/support/settings_file.h"

namespace velmo::tests {

using Milliseconds = std::chrono::milliseconds;

// The time-outs that the tests of this folder set.
constexpr Milliseconds call_timeout{600};
constexpr Milliseconds naming_timeout{400};
constexpr Milliseconds connect_timeout{300};

// The longest that a call may take: it looks its service up afresh, and calls.
constexpr Milliseconds longest_call = naming_timeout + call_timeout;

// What a busy machine may add. Far less than for ever.
constexpr Milliseconds slack{4000};

// Settings with those time-outs and one server, the default one.
class FaultSettings : public SettingsFile {
public:
    explicit FaultSettings(const std::string& naming_url);
};

// Calls that the tests make. A port that is there already is as good as a new one.
inline int make_port()
{
    const int code = create_port("p", 7);
    return code == OBJECT_ALREADY_EXSIT ? VL_OK : code;
}

// Before a fault: everything is looked up and connected, however busy the machine is.
inline bool port_is_there()
{
    return eventually([] { return make_port() == VL_OK; });
}

// A call that lasts, if no packet comes.
inline int wait_for_packet(unsigned int port, Milliseconds wait)
{
    void* data = nullptr;
    unsigned int length = 0;
    const int code =
        vl_receive_packetv(port, nullptr, &data, &length,
                           static_cast<unsigned int>(wait.count()), nullptr, nullptr);
    vl_free_memory(&data);
    return code;
}

// Sanitizers need descriptors of their own and address space without end, do not survive
// the end of a cancelled thread, and take their time when a process exits.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

// Whether the long forms are wanted (VELMO_FAULTS_LONG): every n, many kills.
bool long_form();

// One fault, and one line of the table in docs/reliability.md: the destructor adds it to
// the file that VELMO_FAULTS_TABLE names, if any.
class Fault {
public:
    explicit Fault(std::string what, Milliseconds limit = longest_call);
    ~Fault();
    Fault(const Fault&) = delete;
    Fault& operator=(const Fault&) = delete;

    // Makes a call while the fault is there, and notes its code and how long it took: it
    // may not take longer than the limit. From any thread.
    template <class Call>
    int call(Call make)
    {
        const Clock::time_point begin = Clock::now();
        const int code = make();
        note(code, std::chrono::duration_cast<Milliseconds>(Clock::now() - begin));
        return code;
    }

    // The fault has just been mended: makes calls until one succeeds, and notes how long
    // that took and how many failed on the way.
    template <class Call>
    void recovers(Call make)
    {
        const Clock::time_point begin = Clock::now();
        int failed = 0;
        const bool mended = eventually([&] {
            const bool succeeded = make() == VL_OK;
            failed += !succeeded;
            return succeeded;
        });
        note_recovery(mended, failed,
                      std::chrono::duration_cast<Milliseconds>(Clock::now() - begin));
    }

    // More about it, for the table.
    void remark(std::string text) { remarks.push_back(std::move(text)); }

    // What the library has logged since this object was made.
    std::string log() const;

private:
    using Clock = std::chrono::steady_clock;

    struct Code {
        int code;
        int times;
    };

    void note(int code, Milliseconds taken);
    void note_recovery(bool mended, int failed, Milliseconds taken);
    std::string codes_seen() const;
    std::string exceptions_logged() const;
    std::string remarks_made() const;

    const std::string what;
    const Milliseconds limit;
    std::size_t log_before;

    std::mutex mutex; // guards what follows
    std::vector<Code> codes;
    Milliseconds longest{0};
    Milliseconds recovery{-1};
    int failed_on_the_way = 0;
    std::vector<std::string> remarks;
};

} // namespace velmo::tests

#endif
