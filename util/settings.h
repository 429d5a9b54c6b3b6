// The settings: which servers there are, where they stand, and the time-outs.
//
// One XML file, read as a whole. A file with a fault anywhere yields no servers,
// so that a slip in it sends nothing to another server than before.
#ifndef VELMO_UTIL_SETTINGS_H
#define VELMO_UTIL_SETTINGS_H

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "util/settings_source.h"
#include "util/settings_values.h"

namespace velmo::settings {

// What one reading of the settings gave. Never changes; safe from any thread.
class Settings {
public:
    // Reads the file that the environment names: VELMO_SETTINGS, else
    // $XDG_CONFIG_HOME/velmo/velmo.xml (~/.config when that is not set), else
    // /etc/velmo/velmo.xml. Neither function throws on account of a file, nor
    // logs, nor blocks on anything but the disk.
    static std::shared_ptr<const Settings> read();
    static std::shared_ptr<const Settings> read(const std::string& path);

    explicit Settings(Place place);
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    const std::string& path() const { return place.path; } // "" without a file
    const std::string& path_origin() const { return place.origin; }

    // "" when nothing is wrong, else "FILE:LINE: REASON". What is wrong with the
    // file as a whole (it cannot be read, it is too large) is given for line 1;
    // without a file it is the reason alone.
    const std::string& error() const { return fault; }

    // Variables of the environment that were ignored, and why.
    const std::vector<std::string>& warnings() const { return ignored; }

    const Sourced<Milliseconds>& connect_timeout() const { return connect; }

    // In the order of the file.
    const std::vector<Server>& servers() const { return listed; }

    // Those at one of position_words, in the order of the file; none for any
    // other word.
    std::vector<const Server*> at(std::string_view word) const;

    // The server that a call by this name goes to; null when the settings do not
    // list it, and for every name when they are faulty. Without a file there is
    // the built-in server, which servers() does not show. NULL is like "".
    const Server* find(const char* name) const;

    // Whether they were faulty and may have been mended since they were read.
    bool perhaps_mended() const;

    // Looks for them and reads them again in the same way.
    std::shared_ptr<const Settings> read_again() const;

private:
    void take_over_file(const Timeouts& environment);
    void do_without_file(const Timeouts& environment);

    Place place;
    Stamp stamp; // taken before reading, so that no change is missed
    std::string fault;
    bool may_pass = false; // the fault, by itself
    std::vector<std::string> ignored;
    Sourced<Milliseconds> connect;
    std::vector<Server> listed;
    std::optional<Server> built_in;
};

// What the process goes by: what was last made current, else read now. When it
// is faulty and its file has been touched since, or could not be read for lack of
// descriptors or memory, it is read again, so that a mended file is noticed. Safe from
// any thread, like the two below.
std::shared_ptr<const Settings> current();

// Makes current what Settings::read() gives now, and returns it.
std::shared_ptr<const Settings> renew();

void make_current(std::shared_ptr<const Settings> settings);

// Whatever becomes current, its faults are logged; none a second time until the
// file has been without one.

} // namespace velmo::settings

#endif
