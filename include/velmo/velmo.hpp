/** @file
 * The Velmo client library for C++17, as a thin layer of headers over vl_api.h and
 * vl_util.h. A program links what it would in C: -lvelmo_api -lVelmo_Util.
 *
 *     #include <velmo/velmo.hpp>
 *     using namespace std::chrono_literals;
 *
 *     velmo::Ports ports; // of this host's own server
 *     ports.create("inbox", 42).or_good(OBJECT_ALREADY_EXSIT).value(); // or throws
 *     if (auto sent = ports.send(42, "hello"); !sent)
 *         std::cerr << sent.error().message() << '\n';
 *     if (auto packet = ports.receive(42, 1s))
 *         std::cout << packet->text() << '\n';
 *     else
 *         std::cerr << packet.error().message() << '\n';
 *
 * What vl_api.h says of every function holds here too: how long a call blocks, what is safe
 * from several threads, what the server's limits are. What the layer adds:
 *
 *   Result     every call that can fail gives a Result: a value and a code. It is true when
 *              the code is VL_OK; error() is the code as a std::error_code; value() throws
 *              std::system_error, and is the only function of the layer that throws. What
 *              the library lets out (std::bad_alloc where a service is looked up) passes.
 *              The codes of a call are those of the C function that it names.
 *   Server     Ports, Points, Events, Contention and Snapshots each speak to one server and
 *              realm, given when they are made; without, to the default one. They hold
 *              two strings and no connection: make them where they are needed, or keep
 *              them; several threads may use one.
 *   Strings    Name: const char* or std::string, NUL-terminated, not kept.
 *   Data       Bytes and Buffer view memory of the caller; nothing is copied into them.
 *              More than INT_MAX bytes to be sent give the code of a failed call.
 *   Results    Block, Text, Names and Connections own what the library has handed out,
 *              and free it. They can be moved and not copied; views of them end with them.
 *   Waiting    Wait: any std::chrono duration, Wait::longest(), or {} for no wait.
 *   Exceptions compiles with -fno-exceptions; value() of a failure calls std::abort() then.
 */
#ifndef VELMO_VELMO_HPP
#define VELMO_VELMO_HPP

#include "cpp/contention.hpp"
#include "cpp/error.hpp"
#include "cpp/events.hpp"
#include "cpp/memory.hpp"
#include "cpp/points.hpp"
#include "cpp/ports.hpp"
#include "cpp/result.hpp"
#include "cpp/server.hpp"
#include "cpp/settings.hpp"
#include "cpp/snapshots.hpp"
#include "cpp/views.hpp"

#endif
