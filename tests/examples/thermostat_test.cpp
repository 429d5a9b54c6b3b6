// The example of the C++ layer.
#include "tests/examples/example.h"
#include "tests/support/eventually.h"

using namespace velmo::tests;

namespace {

class Thermostat : public OneServer {};

TEST_F(Thermostat, IsSetAndShown)
{
    Process thermostat({example("thermostat"), "serve"});
    EXPECT_EQ(output_of({example("thermostat"), "set", "21.5"}), "done\n");
    EXPECT_EQ(output_of({example("thermostat")}),
              "example target (degrees, of the thermostat): 21.5\n");
    EXPECT_EQ(thermostat.out(), "the target is 21.5\n");
    ASSERT_EQ(send(1601, "warm"), VL_OK);
    ASSERT_EQ(receive_reply(1601, 10000), "not a temperature");
}

TEST_F(Thermostat, ShowsThatThereIsNoTarget)
{
    const std::string shown = output_of({example("thermostat"), "show"});
    EXPECT_EQ(shown.substr(0, 45), "example target (degrees, of the thermostat): ");
}

} // namespace
