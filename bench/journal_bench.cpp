// What it costs to have a change on the disk, against the disk's own pace, in the
// temporary folder (TMPDIR).
#include <fcntl.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include "server/journal/durability.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace {

using namespace velmo;

// A realm with a point for each thread.
struct Kept {
    Kept()
    {
        realms.push_back(std::make_unique<model::Realm>(""));
        durability.emplace(folder.path(), "bench", realms, [](model::Realm& realm) {
            for (int thread = 0; thread < 64; ++thread)
                realm.points.create("point " + std::to_string(thread), "bytes");
        });
    }

    tests::TemporaryFolder folder;
    journal::Realms realms;
    std::optional<journal::Durability> durability;
};

Kept& kept()
{
    static Kept realm;
    return realm;
}

// Of 64 bytes, each of a thread's own point.
void durable_set(benchmark::State& state)
{
    journal::GroupCommit& commit = kept().durability->commit();
    const std::string point = "point " + std::to_string(state.thread_index());
    const auto value = std::make_shared<const model::Bytes>(64, 'x');
    const journal::Status before = commit.status();
    for (auto _ : state) {
        const bool good = kept().realms.front()->points.set(point, value) == VL_OK &&
                          commit.confirm() == VL_OK;
        if (!good)
            state.SkipWithError("not on the disk");
    }
    state.SetItemsProcessed(state.iterations());
    if (state.thread_index() == 0) {
        const journal::Status after = commit.status();
        state.counters["changes/write"] =
            static_cast<double>(after.changes - before.changes) /
            static_cast<double>(std::max<std::uint64_t>(1, after.groups - before.groups));
    }
}

// A page at the end of a file.
void bare_write(benchmark::State& state)
{
    const tests::TemporaryFolder folder;
    const tests::Descriptor file(
        open((folder.path() / "file").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    const std::string page(4096, 'x');
    for (auto _ : state)
        if (write(file.get(), page.data(), page.size()) < 0 || fdatasync(file.get()) != 0)
            state.SkipWithError("not on the disk");
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(bare_write)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(durable_set)->ThreadRange(1, 64)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
