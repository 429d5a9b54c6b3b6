// What the process goes by, and the report of what is wrong with it.
#include <map>
#include <mutex>
#include <set>

#include "CQuilp.h"
#include "util/settings.h"

namespace velmo::settings {
namespace {

struct Process {
    std::mutex mutex;
    std::shared_ptr<const Settings> settings;
    // By file; "" for what is wrong with the environment.
    std::map<std::string, std::set<std::string>> reported;
};

// Never destroyed: calls that end late need it after the static objects have gone.
Process& process()
{
    static Process& only = *std::make_unique<Process>().release();
    return only;
}

void adopt(Process& own, std::shared_ptr<const Settings> settings)
{
    for (const std::string& warning : settings->warnings()) {
        if (own.reported[""].insert(warning).second)
            CQuilp::instance()->vl_log("%s", warning.c_str());
    }
    const std::string& path = settings->path();
    const std::string& error = settings->error();
    if (error.empty() && !path.empty())
        own.reported.erase(path);
    else if (!error.empty() && own.reported[path].insert(error).second)
        CQuilp::instance()->vl_log("%s (until this is mended no server can be reached)",
                                   error.c_str());
    own.settings = std::move(settings);
}

} // namespace

std::shared_ptr<const Settings> current()
{
    Process& own = process();
    const std::lock_guard<std::mutex> hold(own.mutex);
    if (!own.settings)
        adopt(own, Settings::read());
    else if (own.settings->perhaps_mended())
        adopt(own, own.settings->read_again());
    return own.settings;
}

std::shared_ptr<const Settings> renew()
{
    // Under the lock, lest what another thread reads meanwhile is followed by this.
    Process& own = process();
    const std::lock_guard<std::mutex> hold(own.mutex);
    adopt(own, Settings::read());
    return own.settings;
}

void make_current(std::shared_ptr<const Settings> settings)
{
    Process& own = process();
    const std::lock_guard<std::mutex> hold(own.mutex);
    adopt(own, std::move(settings));
}

} // namespace velmo::settings
