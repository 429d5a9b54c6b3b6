// What every function gives where its server, or the realm, is not to be reached.
#include <cwchar>
#include <string>

#include "tests/e2e/functions.h"
#include "tests/e2e/one_server.h"

using namespace velmo::tests;

namespace {

// Without the unix socket, so that a client meets a broken connection for certain.
class Unreachable : public OneServer {
protected:
    Unreachable() : OneServer({"--no-unix"}) {}
};

TEST_F(Unreachable, ARealmThatIsNone)
{
    for (const Function& function : functions)
        EXPECT_EQ(function.call("none"), function.no_reference) << function.name;
}

TEST_F(Unreachable, AServerThatWasKilledCostsEachFunctionACallWithItsOwnCode)
{
    for (const Function& function : functions) {
        function.call(nullptr); // mends what the function before has found broken
        function.call(nullptr);
        velmod.kill();
        velmod.restart();
        EXPECT_EQ(function.call(nullptr), function.failed) << function.name;
        const int next = function.call(nullptr);
        EXPECT_NE(next, VL_NO_REFERENCE) << function.name;
        EXPECT_TRUE(next != function.failed || next == VL_OK) << function.name;
    }
}

TEST_F(Unreachable, TheEndOfTheUseClosesNothing)
{
    ASSERT_EQ(create_point("p"), VL_OK);
    EXPECT_EQ(vl_mid_connect(nullptr), VL_OK);
    EXPECT_EQ(vl_mid_disconnect(), VL_OK);
    EXPECT_EQ(vl_mid_disconnect(), VL_OK);
    EXPECT_EQ(vl_mid_is_connect("S"), VL_OK);
    EXPECT_EQ(all_points(), Names{"p"});
    velmod.kill();
    EXPECT_EQ(vl_mid_is_connect(nullptr), NAMING_SERVER_NOT_ONLINE);
    EXPECT_EQ(vl_mid_connect("S"), NAMING_SERVER_NOT_ONLINE);
}

TEST(Codes, HaveATextEach)
{
    setenv("VELMO_LANG", "en", 1);
    const std::wstring none = L"UNKNOWN_ERROR";
    for (const int code : {
#define CODE(name, number) number,
             VL_RESULT_CODES(CODE)
#undef CODE
                 VL_REMOTE_FAILURE_FIRST,
             VL_REMOTE_FAILURE_LAST})
        EXPECT_NE(get_error_string(code), none) << code;
    for (const int code :
         {-1, VL_REMOTE_FAILURE_FIRST - 1, VL_REMOTE_FAILURE_LAST + 1, 9999})
        EXPECT_EQ(get_error_string(code), none) << code;
}

TEST(Blocks, ThatAreNoneCanBeFreed)
{
    void* nothing = nullptr;
    vl_free_memory(nullptr);
    vl_free_memory(&nothing);
    EXPECT_EQ(nothing, nullptr);
}

} // namespace
