// Waiting for a condition, for tests.
#ifndef VELMO_TESTS_SUPPORT_EVENTUALLY_H
#define VELMO_TESTS_SUPPORT_EVENTUALLY_H

#include <chrono>
#include <thread>

namespace velmo::tests {

// Far longer than anything takes on a busy machine: only a test that would hang
// reaches it.
constexpr std::chrono::seconds patience{60};

// Polls until condition() holds; false when it does not within the limit.
template <class Condition>
bool eventually(Condition condition, std::chrono::milliseconds limit = patience)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

} // namespace velmo::tests

#endif
