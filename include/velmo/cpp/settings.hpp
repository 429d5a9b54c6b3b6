// The settings that the library reads.
#ifndef VELMO_CPP_SETTINGS_HPP
#define VELMO_CPP_SETTINGS_HPP

#include <chrono>
#include <memory>
#include <optional>
#include <string_view>

#include "../vl_util.h"
#include "result.hpp"
#include "views.hpp"

namespace velmo {

/** A settings file as it was when it was opened. It never changes and may be read from
 * several threads; every string belongs to it. Contacts nobody.
 *
 *     velmo::Settings settings;
 *     if (auto wrong = settings.error())
 *         std::cerr << *wrong << '\n';
 *     for (int i = 0; i < settings.server_count(); ++i)
 *         std::cout << settings.server(i)->name << '\n';
 */
class Settings {
public:
    /** Reads the file that the library would use. vl_settings_open(). A missing or faulty
     * file is no failure; without memory it is like one without servers. */
    Settings() : settings_(::vl_settings_open(nullptr)) {}

    /** Reads this file. */
    explicit Settings(Name path) : settings_(::vl_settings_open(path.c_str())) {}

    /** "" when no file was found. vl_settings_path(). */
    std::string_view path() const { return text(::vl_settings_path(get())); }

    /** How the file was found, for people. vl_settings_path_origin(). */
    std::string_view path_origin() const { return text(::vl_settings_path_origin(get())); }

    /** What is wrong, as "FILE:LINE: REASON". vl_settings_error(). */
    std::optional<std::string_view> error() const
    {
        const char* reason = ::vl_settings_error(get());
        return reason ? std::optional<std::string_view>(reason) : std::nullopt;
    }

    struct Timeout {
        std::chrono::milliseconds limit; ///< 0: none
        std::string_view origin;         ///< where it came from, for people
    };

    /** The connection time-out. vl_settings_connect_timeout(). */
    Timeout connect_timeout() const
    {
        const char* origin = nullptr;
        const std::chrono::milliseconds limit(
            ::vl_settings_connect_timeout(get(), &origin));
        return {limit, text(origin)};
    }

    /** The servers that the file lists. vl_settings_server_count(). */
    int server_count() const { return ::vl_settings_server_count(get()); }

    /** The server at an index from 0; PARAMETER_ERROR beyond. vl_settings_get_server(). */
    Result<vl_settings_server> server(int index) const
    {
        vl_settings_server server{};
        const int code = ::vl_settings_get_server(get(), index, &server);
        return {code, server};
    }

private:
    struct Close {
        void operator()(vl_settings* settings) const noexcept
        {
            ::vl_settings_close(settings);
        }
    };

    const vl_settings* get() const noexcept { return settings_.get(); }
    static std::string_view text(const char* string) { return string ? string : ""; }

    std::unique_ptr<vl_settings, Close> settings_;
};

} // namespace velmo

#endif
