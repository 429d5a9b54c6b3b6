// Many threads on one point service. Meant for the thread sanitizer as well.
#include <thread>

#include "tests/server/point_fixture.h"

using namespace velmo;
using namespace velmo::tests;
using model::PointImage;

namespace {

class PointStress : public PointFixture {
protected:
    static std::string pair(int number, const std::string& half)
    {
        return "pair " + std::to_string(number) + "/" + half;
    }

    // Counts up, always in the first half before the second.
    void write_pair(int number)
    {
        for (int i = 1; writing; ++i) {
            ASSERT_EQ(set(pair(number, "a"), std::to_string(i)), VL_OK);
            ASSERT_EQ(set(pair(number, "b"), std::to_string(i)), VL_OK);
        }
    }

    // Creates two points together; the first goes before the second.
    void come_and_go(int number)
    {
        const std::string name = "set " + std::to_string(number);
        while (writing) {
            ASSERT_EQ(points.create_set(name, "text", "1\n2"), VL_OK);
            ASSERT_EQ(points.remove(name + "/1"), VL_OK);
            ASSERT_EQ(points.remove(name + "/2"), VL_OK);
        }
    }

    void list_and_read()
    {
        while (writing) {
            const model::NameTable table = points.names();
            const Names names(table.begin(), table.end());
            ASSERT_TRUE(std::is_sorted(names.begin(), names.end()));
            ASSERT_GE(names.size(), standing);
            ASSERT_NE(get(pair(0, "a")), "[2001]");
        }
    }

    std::atomic<bool> writing{true};
    static constexpr int pairs = 4;
    static constexpr int bystanders = 100;
    static constexpr int moments = 20;
    static constexpr std::size_t standing = 2 * pairs + bystanders;
};

TEST_F(PointStress, AMomentIsOneWhileOthersWrite)
{
    for (int i = 0; i < pairs; ++i) {
        create({pair(i, "a"), pair(i, "b")});
        ASSERT_EQ(set(pair(i, "a"), "0"), VL_OK);
        ASSERT_EQ(set(pair(i, "b"), "0"), VL_OK);
    }
    // Others, for a visit to take its time.
    for (int i = 0; i < bystanders; ++i)
        create({"bystander " + std::to_string(i)});
    std::vector<std::thread> threads;
    for (int i = 0; i < pairs; ++i)
        threads.emplace_back([&, i] { write_pair(i); });
    for (int i = 0; i < 2; ++i)
        threads.emplace_back([&, i] { come_and_go(i); });
    threads.emplace_back([&] { list_and_read(); });

    for (int i = 0; i < moments && !HasFailure(); ++i) {
        int visited = 0;
        const auto all = moment([&](const PointImage&) {
            if (++visited % 20 == 0)
                std::this_thread::yield();
        });
        for (int k = 0; k < pairs; ++k) {
            const int a = std::stoi(all.at(pair(k, "a")).substr(6)); // after "text||"
            const int b = std::stoi(all.at(pair(k, "b")).substr(6));
            EXPECT_TRUE(a == b || a == b + 1) << a << ' ' << b;
        }
        for (const std::string name : {"set 0", "set 1"})
            EXPECT_LE(all.count(name + "/1"), all.count(name + "/2"));
    }
    writing = false;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(moment().size(), standing);
    EXPECT_EQ(points.size(), standing);
    EXPECT_EQ(get(pair(0, "a")), get(pair(0, "b")));
}

TEST_F(PointStress, AMomentIsBeforeOrAfterARestoration)
{
    std::vector<PointImage> first, second;
    for (int i = 0; i < 200; ++i) {
        first.push_back({"p" + std::to_string(i), "text", "", bytes_of("first")});
        second.push_back({"p" + std::to_string(i + 100), "text", "", bytes_of("second")});
    }
    ASSERT_EQ(restore(first), VL_OK);
    std::atomic<bool> restoring{true};
    std::vector<std::thread> threads;
    threads.emplace_back([&] {
        std::string reason;
        for (int i = 0; i < 100; ++i)
            ASSERT_EQ(points.restore(i % 2 == 0 ? second : first, reason), VL_OK);
        restoring = false;
    });
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            do {
                const std::string text = get("p150"); // is in both
                ASSERT_TRUE(text == "first" || text == "second") << text;
                ASSERT_GE(points.names().size(), 100u);
            } while (restoring);
        });
    do {
        const auto all = moment();
        ASSERT_EQ(all.size(), 200u);
        const bool is_first = all.count("p0") == 1;
        ASSERT_EQ(all.count("p299"), is_first ? 0u : 1u);
        for (const auto& [name, text] : all)
            ASSERT_EQ(text, is_first ? "text||first" : "text||second");
    } while (restoring);
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(PointStress, AllThreadsWantTheSameNames)
{
    constexpr int rounds = 2000;
    std::atomic<int> created{0}, removed{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < rounds; ++i) {
                const std::string name = "p" + std::to_string(i % 10);
                if (points.create(name, "text") == VL_OK)
                    ++created;
                set(name, name);
                const std::string text = get(name);
                ASSERT_TRUE(text == name || text == "[2001]" || text == "[4002]") << text;
                if (points.remove(name) == VL_OK)
                    ++removed;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(created - removed, static_cast<int>(points.size()));
    EXPECT_EQ(points.names().size(), points.size());
}

} // namespace
