// A snapshot file of arbitrary bytes: refused when velmod opens it, or loaded.

#include "tests/fuzz/input_file.h"
#include "tests/fuzz/loading.h"
#include "tests/fuzz/require.h"

using namespace velmo;
using tests::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    // A folder for each: what SQLite keeps beside a file belongs to that file.
    const tests::InputFile file(store::snapshot_file("", "S"));
    file.write(std::string(reinterpret_cast<const char*>(bytes), size));
    try {
        store::SnapshotStore store(file.parent(), "S");
        tests::check_loading(store);
    } catch (const store::StoreError& error) {
        require(std::string(error.what()).find(file.path().string()) != std::string::npos,
                "a file is refused by its name");
    }
    return 0;
}
