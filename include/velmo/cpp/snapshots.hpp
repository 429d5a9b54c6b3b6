// Snapshots: what a server keeps on its disk.
#ifndef VELMO_CPP_SNAPSHOTS_HPP
#define VELMO_CPP_SNAPSHOTS_HPP

#include "server.hpp"

namespace velmo {

/** The snapshots of a server and realm. Each saved one replaces the one before. */
class Snapshots : public detail::ServerUser {
public:
    explicit Snapshots(Server server = {}) noexcept : ServerUser(std::move(server)) {}

    /** Saves the templates. A success as well when the server cannot be reached.
     * vl_make_dt_snapshot(). */
    Result<> save_templates() const { return ::vl_make_dt_snapshot(name(), realm()); }

    /** Does nothing: they are loaded when a server starts. vl_load_dt_snapshot(). */
    Result<> load_templates() const { return ::vl_load_dt_snapshot(name(), realm()); }

    /** Saves the points as they are at one moment. vl_make_dtp_snapshot(). */
    Result<> save_points() const { return ::vl_make_dtp_snapshot(name(), realm()); }

    /** Replaces the points by those saved last, all or none. A success as well when the
     * call failed. vl_load_dtp_snapshot(). */
    Result<> load_points() const { return ::vl_load_dtp_snapshot(name(), realm()); }

    /** Saves the ports with their connections and queues, then the events.
     * vl_make_port_snapshot(). */
    Result<> save_ports() const { return ::vl_make_port_snapshot(name(), realm()); }

    /** Does nothing: they are loaded when a server starts. vl_load_port_snapshot(). */
    Result<> load_ports() const { return ::vl_load_port_snapshot(name(), realm()); }
};

} // namespace velmo

#endif
