// A process that uses the library and exits; exit_test.cpp looks at how.
//
//     exit_scenario FIRST ORB END
//
//     FIRST  which of the library's objects is made first:
//            manager, registry, errors, naming, log
//     ORB    whose the ORB is, made when in relation to the library's first call, and
//            what becomes of it: library, kept-before, destroyed-before, kept-after,
//            destroyed-after
//     END    return, exit, call (another thread is waiting in a call), twice (ACE is
//            finished by hand before)

#include <ace/Object_Manager.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <future>
#include <string>
#include <thread>

#include "CQuilp.h"
#include "orb/corba.h"
#include "vlNaming_Client.h"
#include "vlReferenceContainer.h"
#include "vl_api.h"

namespace {

CORBA::ORB_var application_orb; // released after main(), if it is kept

void make_orb()
{
    int argc = 0;
    application_orb = CORBA::ORB_init(argc, nullptr);
}

bool make_first(const std::string& first)
{
    if (first == "manager")
        vl_mid_disconnect();
    else if (first == "registry")
        vlReferenceContainer::instance();
    else if (first == "errors")
        get_error_string(0);
    else if (first == "naming")
        vlNaming_Client::GetInstance()->isConnect("S");
    else if (first == "log")
        CQuilp::instance()->vl_log("%s", "first");
    else
        return false;
    return true;
}

bool use_library()
{
    const int code = vl_create_port("port", 1, 0, "S", nullptr);
    if (code != VL_OK)
        std::fprintf(stderr, "create_port: %d %ls\n", code, get_error_string(code));
    CQuilp::instance()->vl_log("%s", "used");
    return code == VL_OK;
}

// Leaves a thread behind that waits for a packet which never comes.
void wait_in_call()
{
    std::promise<void> started;
    std::thread([&started] {
        void* data = nullptr;
        unsigned int length = 0;
        started.set_value();
        vl_receive_packetv(1, nullptr, &data, &length, 0xFFFFFFFF, "S", nullptr);
    }).detach();
    started.get_future().wait();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4)
        return 2;
    const std::string first = argv[1], orb = argv[2], end = argv[3];
    const bool before = orb == "kept-before" || orb == "destroyed-before";
    const bool after = orb == "kept-after" || orb == "destroyed-after";

    if (before)
        make_orb();
    if (!make_first(first) || !use_library())
        return 1;
    if (after)
        make_orb();
    if (end == "call")
        wait_in_call();
    if (orb == "destroyed-before" || orb == "destroyed-after")
        application_orb->destroy();
    if (end == "twice")
        ACE_Object_Manager::instance()->fini();
    if (end == "exit")
        std::exit(0);
    return 0;
}
