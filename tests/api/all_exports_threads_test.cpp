// Every export on many threads, while the servers are restarted under them.

#include <atomic>
#include <condition_variable>
#include <future>
#include <list>
#include <mutex>
#include <vector>

#include "tests/api/operations.h"
#include "tests/support/intended_leak.h"
#include "tests/support/library_test.h"
#include "tests/support/scripted_server.h"
#include "vl_api.h"

namespace velmo::tests {

namespace {

constexpr int threads = 16;
constexpr int rounds = 30;

// How far the threads have come, for the one that follows them.
class Progress {
public:
    void made_one()
    {
        std::lock_guard<std::mutex> guard(mutex);
        ++made;
        changed.notify_all();
    }
    void finish()
    {
        std::lock_guard<std::mutex> guard(mutex);
        finished = true;
        changed.notify_all();
    }
    // Waits for so many more; false when there will be none.
    bool reaches(int more)
    {
        std::unique_lock<std::mutex> guard(mutex);
        const int enough = made + more;
        changed.wait(guard, [&] { return finished || made >= enough; });
        return !finished;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    int made = 0;
    bool finished = false;
};

// "home" is reached within the process, "far" over connections; both answer everything.
class AllExportsThreadsTest : public LibraryTest {
protected:
    AllExportsThreadsTest()
    {
        set_own_servers({"home", "far"});
        naming.set_reachable({"home", "far"});
        answer_everything(far);
        restart();
    }

    // Calls under way go on at servants that are no longer there for others, or lose
    // their connection. The servants stay: that the broker counts their users is not
    // to be seen by the thread sanitizer, for which they would go too early.
    void restart()
    {
        const IntendedLeak of_references; // that calls of com_chennal_seq's kind lose
        if (!homes.empty())
            homes.back().withdraw();
        homes.emplace_back();
        answer_everything(homes.back());
        far.reconnect();
        for (const char* server : {"home", "far"})
            ScriptedServer::unbind(server);
        homes.back().bind("home");
        far.bind("far");
    }

    void release_references()
    {
        for (const char* server : {"home", "far"}) {
            registry().ReleasePortReference(server, nullptr);
            registry().ReleaseDtpReference(server, "");
            registry().ReleaseDtReference(server, nullptr);
            registry().ReleaseContenterReference(server, "");
            registry().ReleaseFileReference(server, "");
            registry().releaseAllReference(server);
        }
    }

    // Failures that a restart explains, and no others.
    static bool documented(const Operation& operation, int result)
    {
        return result == VL_OK || result == operation.failures.broker ||
               result == operation.failures.no_reference;
    }

    void call_everything(const char* server)
    {
        for (const Operation& operation : operations()) {
            const int result = operation.call(server, nullptr);
            EXPECT_TRUE(documented(operation, result))
                << operation.name << " gave " << result;
            (result == VL_OK ? succeeded : failed)++;
            progress.made_one();
        }
        for (const Operation& operation : idle_operations())
            EXPECT_EQ(operation.call(server, nullptr), 0) << operation.name;
        EXPECT_EQ(vl_mid_connect(server), 0);
        EXPECT_EQ(vl_mid_is_connect(server), 0);
        EXPECT_EQ(vl_mid_disconnect(), 0);
        EXPECT_EQ(vl_get_servername("own").count, 2);
        EXPECT_STREQ(get_error_string(0), L"text of VL_OK");
        void* block = nullptr;
        vl_free_memory(&block);
        ConnectionList list{};
        vl_destory_connection_seq(&list);
    }

    static void answer_everything(ScriptedServer& server)
    {
        for (const Operation& operation : operations())
            server->answer(operation.remote, full_reply());
    }

    std::list<ScriptedServer> homes; // the last one is there
    ScriptedServer far{ScriptedServer::Reach::over_the_wire};
    Progress progress;
    std::atomic<int> succeeded{0};
    std::atomic<int> failed{0};
};

TEST_F(AllExportsThreadsTest, results_are_documented_while_servers_come_and_go)
{
    std::vector<std::future<void>> callers;
    for (int i = 0; i < threads; ++i)
        callers.push_back(std::async(std::launch::async, [this, i] {
            for (int round = 0; round < rounds; ++round)
                call_everything((i + round) % 2 == 0 ? nullptr : "far");
        }));
    auto other = std::async(std::launch::async, [this] {
        while (progress.reaches(200)) {
            release_references();
            if (progress.reaches(200))
                restart();
        }
    });
    for (auto& caller : callers)
        caller.get();
    progress.finish();
    other.get();

    EXPECT_GT(succeeded.load(), 0);
    EXPECT_GT(failed.load(), 0); // the restarts were noticed
}

} // namespace

} // namespace velmo::tests
