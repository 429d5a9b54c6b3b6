#include "server/options.h"

#include <algorithm>
#include <stdexcept>

#include "server/command_line.h"
#include "server/configuration.h"
#include "server/process.h"
#include "util/settings_source.h"
#include "util/settings_values.h"

namespace velmo::server {

namespace {

// The options that take effect while the server runs.
constexpr const char* reloadable[] = {"max-points", "max-wait", "lease"};

Arguments as_arguments(const std::vector<FileOption>& options)
{
    Arguments arguments;
    for (const FileOption& option : options)
        arguments.push_back("--" + option.name + "=" + option.value);
    return arguments;
}

// Throws settings::Fault for the first option that is wrong, by itself or beside those
// before it.
void check_options(const std::vector<FileOption>& options)
{
    std::vector<FileOption> so_far;
    for (const FileOption& option : options) {
        so_far.push_back(option);
        try {
            CommandLine().parse(as_arguments(so_far));
        } catch (const CLI::ParseError& error) {
            const std::string reason = error.what();
            throw settings::Fault(option.line,
                                  reason.substr(reason.find_first_not_of('-')));
        }
    }
}

const Options& checked(const Options& options)
{
    if (options.load && options.data_dir.empty())
        throw std::runtime_error("--load needs --data-dir, where the snapshots are");
    if (options.durable && options.data_dir.empty())
        throw std::runtime_error("--durable needs --data-dir, where the state is kept");
    return options;
}

} // namespace

std::string host_and_port(const orb::Endpoint& endpoint)
{
    return orb::url_host(endpoint.host) + ":" + std::to_string(endpoint.port);
}

std::optional<Options> parse_options(const Arguments& arguments, int& exit_status)
{
    CommandLine line;
    try {
        line.parse(arguments);
        const int ready = line.options.ready_fd;
        if (ready >= 0 && !is_given_for_writing(ready))
            throw CLI::ValidationError("--ready-fd", "descriptor " + std::to_string(ready) +
                                                         " is not open for writing");
    } catch (const CLI::ParseError& error) {
        exit_status = line.exit(error) == 0 ? 0 : misuse_status;
        return std::nullopt;
    }
    return read_options(arguments);
}

Options read_options(const Arguments& arguments)
{
    CommandLine first;
    first.parse(arguments);
    const std::string path =
        first.options.file.empty() ? settings::find_file().path : first.options.file;
    if (path.empty())
        return checked(first.options);
    try {
        Configuration file = read_configuration(path, first.configurable());
        check_options(file.options);
        const auto overridden = [&](const FileOption& option) {
            return first.decides(option.name);
        };
        file.options.erase(
            std::remove_if(file.options.begin(), file.options.end(), overridden),
            file.options.end());
        Arguments all = as_arguments(file.options);
        all.insert(all.end(), arguments.begin(), arguments.end());
        CommandLine both;
        both.parse(all);
        both.options.templates = std::move(file.templates);
        both.options.file = path;
        return checked(both.options);
    } catch (const settings::Fault& fault) {
        throw std::runtime_error(path + ":" + std::to_string(fault.line) + ": " +
                                 fault.what());
    }
}

std::vector<std::string> needing_restart(const Options& running, const Options& wanted)
{
    std::vector<std::string> names;
    for (const std::string& name : CommandLine().configurable()) {
        const auto values = [&](const Options& options) {
            const auto found = options.given.find(name);
            return found == options.given.end() ? std::vector<std::string>()
                                                : found->second;
        };
        const bool can_change = std::find(std::begin(reloadable), std::end(reloadable),
                                          name) != std::end(reloadable);
        if (!can_change && values(running) != values(wanted))
            names.push_back(name);
    }
    return names;
}

} // namespace velmo::server
