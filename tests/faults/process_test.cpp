// What an application does to itself: it forks, it cancels threads.
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

#include "tests/faults/servers.h"

using namespace velmo::tests;

namespace {

// What a child that fork() makes of this process exits with; -1 when it has not exited
// in good time.
template <class Child>
int exit_status_of(Child child)
{
    const pid_t pid = fork();
    if (pid == 0)
        child();
    int status = 0;
    if (!eventually([&] { return waitpid(pid, &status, WNOHANG) == pid; },
                    std::chrono::seconds(20))) {
        kill(pid, SIGKILL);
        waitpid(pid, &status, 0);
        return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

class AForkedChild : public ::testing::Test {
protected:
    Velmod velmod{over_tcp};
    FaultSettings settings{velmod.naming_url()};
};

TEST_F(AForkedChild, OfAProcessThatUsesTheLibraryReachesNobody)
{
    Fault fault("fork() after the first use, calls in the child");
    ASSERT_TRUE(port_is_there());
    fault.remark("the child's code");
    EXPECT_EQ(fault.call([] { return exit_status_of([] { _exit(create_port("q", 8)); }); }),
              VL_NO_REFERENCE);
    fault.remark("the parent's calls succeed all the while");
    EXPECT_EQ(create_port("q", 8), VL_OK) << "the child has not created it";
    EXPECT_EQ(send(8, "x"), VL_OK);
    EXPECT_EQ(receive(8), "x");
}

TEST_F(AForkedChild, GetsTheCodesOfAServerThatIsNotReached)
{
    ASSERT_TRUE(port_is_there());
    EXPECT_EQ(exit_status_of([] {
                  NameList list{};
                  const bool good = vl_mid_connect("S") == NAMING_SERVER_NOT_ONLINE &&
                                    vl_mid_disconnect() == VL_OK &&
                                    vl_get_servername("own").count == 0 &&
                                    vl_releam_seq(&list, "S") == 137 && list.count == 0 &&
                                    set_point("p", "v") == VL_NO_REFERENCE &&
                                    clear_event("e") == NULL_SERVER_NAME &&
                                    get_point("p") == in_brackets(VL_NO_REFERENCE) &&
                                    update("g", "c") == VL_NO_REFERENCE &&
                                    get_error_string(99) != nullptr;
                  _exit(good ? 0 : 1);
              }),
              0);
}

TEST_F(AForkedChild, ExitsAndItsParentKeepsItsConnections)
{
    ASSERT_TRUE(port_is_there());
    for (int i = 0; i < (sanitized ? 3 : 20); ++i) {
        EXPECT_EQ(exit_status_of([] { std::exit(create_port("q", 8) == 99 ? 0 : 1); }), 0);
        EXPECT_EQ(set_point("p", "v"), VARIABLE_IS_NOT_EXIST);
        EXPECT_EQ(create_port("p", 7), OBJECT_ALREADY_EXSIT);
    }
}

TEST_F(AForkedChild, MadeInTheMiddleOfCallsNeitherHangsNorDisturbsThem)
{
    Fault fault("fork() while 4 threads call, calls and exit() in the child", longest_call);
    ASSERT_TRUE(port_is_there());
    std::atomic<bool> stop{false};
    std::vector<std::thread> callers;
    for (unsigned int i = 0; i < 4; ++i)
        callers.emplace_back([&, i] {
            for (int n = 0; !stop; ++n) {
                const std::string point = "p" + std::to_string(i) + "-" + std::to_string(n);
                EXPECT_EQ(fault.call([&] { return create_point(point); }), VL_OK)
                    << fault.log();
                vl_get_servername("own");
                taken(vl_get_data_template_point_type(point.c_str(), nullptr, nullptr));
                vl_mid_is_connect("S");
            }
        });
    const int children = sanitized ? 3 : long_form() ? 1000 : 50;
    for (int i = 0; i < children; ++i)
        EXPECT_EQ(exit_status_of([] {
                      const int code = create_port("q", 8);
                      if (sanitized) // what other threads held looks like lost
                          _exit(code);
                      std::exit(code);
                  }),
                  VL_NO_REFERENCE);
    stop = true;
    for (std::thread& caller : callers)
        caller.join();
    fault.remark(std::to_string(children) + " children");
    EXPECT_EQ(create_port("q", 8), VL_OK);
}

TEST_F(AForkedChild, OfAProcessThatHasNotUsedTheLibraryUsesIt)
{
    EXPECT_EQ(exit_status_of([] { std::exit(make_port()); }), VL_OK);
    EXPECT_EQ(create_port("p", 7), OBJECT_ALREADY_EXSIT);
}

TEST(ACancelledThread, FinishesItsCallFirst)
{
    if (sanitized)
        GTEST_SKIP() << "a sanitizer does not survive the end of a cancelled thread";
    Velmod velmod(over_tcp);
    FaultSettings settings(velmod.naming_url());
    Fault fault("pthread_cancel() of a thread that waits in a call");
    ASSERT_TRUE(port_is_there());

    struct Caller {
        Fault& fault;
        std::atomic<bool> begun{false};
        std::atomic<int> code{-1};
    } caller{fault};
    pthread_t thread;
    ASSERT_EQ(pthread_create(
                  &thread, nullptr,
                  [](void* argument) -> void* {
                      auto& self = *static_cast<Caller*>(argument);
                      self.begun = true;
                      self.code = self.fault.call(
                          [] { return wait_for_packet(7, Milliseconds(200)); });
                      for (;;)
                          pause(); // the thread ends here
                  },
                  &caller),
              0);
    ASSERT_TRUE(eventually([&] { return caller.begun.load(); }));
    ASSERT_EQ(pthread_cancel(thread), 0);
    void* result = nullptr;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_EQ(caller.code, TIME_OUT) << "the call did not run to its end";
    fault.recovers(make_port);
}

TEST(ACancelledThread, WithItsFirstCallStillToComeMakesTheLibraryWork)
{
    if (sanitized)
        GTEST_SKIP() << "a sanitizer does not survive the end of a cancelled thread";
    Velmod velmod(over_tcp);
    FaultSettings settings(velmod.naming_url());
    std::atomic<int> code{-1};
    pthread_t thread;
    // Cancelled before it calls: reading the settings, connecting and logging are points
    // at which a thread may end.
    ASSERT_EQ(pthread_create(
                  &thread, nullptr,
                  [](void* argument) -> void* {
                      pthread_cancel(pthread_self());
                      *static_cast<std::atomic<int>*>(argument) = make_port();
                      pthread_testcancel();
                      return nullptr;
                  },
                  &code),
              0);
    void* result = nullptr;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_EQ(code, VL_OK);
    EXPECT_EQ(create_port("p", 7), OBJECT_ALREADY_EXSIT);
}

} // namespace
