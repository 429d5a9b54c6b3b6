// Calls exports in an order, with arguments and against answers that the fuzzer chooses.

#include <cstdlib>

#include "tests/fuzz/exports.h"

using namespace velmo::tests;

namespace {

Exercises all_exports()
{
    Exercises all;
    for (const Exercises& some : {general_exports(), plain_exports(), list_exports(),
                                  packet_exports(), point_exports()})
        all.insert(all.end(), some.begin(), some.end());
    require(all.size() == 49, "every export is there");
    return all;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    open_scene();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static const Exercises exports = all_exports();
    Input input(bytes, size);
    set_scene(input);
    while (!input.used_up()) {
        const Exercise exercise = exports[input.index(exports.size())];
        Call call(input);
        exercise(call);
    }
    return 0;
}
