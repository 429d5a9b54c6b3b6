// velmo.hpp: the library from C++.
//
//     thermostat serve          keeps a target temperature; others ask for it, or set it
//     thermostat set DEGREES    asks for another target
//     thermostat show           shows all points of the thermostat
//
// Nothing has to be freed, texts and containers go in as they are, and no call throws
// unless value() asks for it.
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

#include <velmo/velmo.hpp>

using namespace std::chrono_literals;

namespace {

constexpr unsigned int commands = 1600; // handles
constexpr unsigned int panel = 1601;

const velmo::Ports ports; // of this host's own server; ports({"line 2"}) of another
const velmo::Points points;

// Here a failure is the end, so value() throws std::system_error. What exists already is as
// good as created.
void set_up()
{
    points.create("example target", "float64").or_good(OBJECT_ALREADY_EXSIT).value();
    points.describe("example target", "degrees, of the thermostat").value();
    ports.create("example commands", commands).or_good(OBJECT_ALREADY_EXSIT).value();
    ports.create("example panel", panel).or_good(OBJECT_ALREADY_EXSIT).value();
    ports.connect("example panel", "example commands").or_good(ALREADY_CONNECTED).value();
}

void serve()
{
    for (;;) {
        const auto packet = ports.receive(commands, 10s);
        if (packet.error() == velmo::Condition::timed_out)
            continue;                                     // nobody wants anything
        const auto degrees = packet.value().as<double>(); // of eight bytes only
        if (!degrees) {
            ports.reply(commands, "not a temperature").value();
            continue;
        }
        points.set("example target", *degrees).value();
        std::cout << "the target is " << *degrees << std::endl;
        ports.reply(commands, "done").value();
    }
}

void set(double degrees)
{
    ports.send(panel, velmo::bytes_of(degrees), 1s).value();
    std::cout << ports.receive_reply(panel, 10s).value().text() << '\n';
}

void show()
{
    for (const std::string_view name : points.all().value()) {
        if (name.substr(0, 8) != "example ")
            continue;
        const std::string point(name);
        const auto info = points.info(point);
        const auto value = points.get<double>(point);
        std::cout << name << " (" << info->description.view() << "): ";
        if (value)
            std::cout << *value << '\n';
        else // the text of the code, in the user's language
            std::cout << value.error().message() << '\n';
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::string_view what = argc > 1 ? argv[1] : "";
    try {
        set_up();
        if (what == "serve")
            serve();
        else if (what == "set" && argc == 3)
            set(std::strtod(argv[2], nullptr));
        else
            show();
    } catch (const std::system_error& error) {
        std::cerr << error.code().value() << ": " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
