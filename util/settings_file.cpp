#include "util/settings_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>

#include <arpa/inet.h>
#include <pugixml.hpp>
#include <strings.h>

#include "util/settings_element.h"
#include "util/settings_text.h"

namespace velmo::settings {
namespace {

constexpr const char* root_name = "velmo";
constexpr const char* server_name = "server";

// Constant, since a file may be read after static objects have been destroyed.
template <std::size_t Size>
using Words = std::array<std::string_view, Size>;
constexpr Words<4> root_attributes{"local", "call_timeout_ms", "naming_timeout_ms",
                                   "connect_timeout_ms"};
constexpr Words<7> server_attributes{
    "name", "naming", "host", "port", "role", "call_timeout_ms", "naming_timeout_ms"};
constexpr Words<6> schemes{"corbaloc:", "corbaname:", "IOR:", "file:", "http:", "ftp:"};

bool starts_with_scheme(const std::string& url)
{
    return std::any_of(schemes.begin(), schemes.end(), [&](std::string_view scheme) {
        return url.size() > scheme.size() &&
               strncasecmp(url.data(), scheme.data(), scheme.size()) == 0;
    });
}

// Nothing that would mean something else within a URL.
bool is_host(const std::string& host)
{
    in6_addr ignored;
    if (inet_pton(AF_INET6, host.c_str(), &ignored) == 1)
        return true;
    return !host.empty() && std::all_of(host.begin(), host.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '.' || c == '-' || c == '_';
    });
}

std::string without_brackets(const std::string& host)
{
    const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    return bracketed ? host.substr(1, host.size() - 2) : host;
}

std::string name_of(const Element& element)
{
    const std::string* name = element.get("name");
    if (!name)
        throw element.fault("a server without a name");
    if (name->empty())
        throw element.fault("a server's name is empty");
    if (name->size() > max_name_bytes)
        throw element.fault("the server's name " + quoted(*name) + " has " +
                            std::to_string(name->size()) + " bytes, more than " +
                            std::to_string(max_name_bytes));
    return *name;
}

std::string role_of(const Element& element)
{
    const std::string* role = element.get("role");
    if (role && *role != "master" && *role != "slave")
        throw element.fault("the role " + quoted(*role) + " is neither master nor slave");
    return role ? *role : "";
}

unsigned int port_of(const Element& element)
{
    const std::string* text = element.get("port");
    if (!text)
        return defaults::port;
    unsigned int port = 0;
    const char* const end = text->data() + text->size();
    const auto parsed = std::from_chars(text->data(), end, port);
    if (parsed.ec != std::errc() || parsed.ptr != end || port == 0 || port > 65535)
        throw element.fault("the port " + quoted(*text) +
                            " is not a number from 1 to 65535");
    return port;
}

// Where the server's naming service answers: its host and naming_url.
void set_naming(Server& server, const Element& element)
{
    const std::string* naming = element.get("naming");
    const std::string* host = element.get("host");
    if (naming && (host || element.get("port")))
        throw element.fault("a server has either naming or host and port");
    if (!naming && !host)
        throw element.fault("a server needs naming or host");
    if (naming && !starts_with_scheme(*naming))
        throw element.fault("naming is " + quoted(*naming) +
                            ", not a URL such as corbaloc::1.2@HOST:PORT/NameService");
    if (host) {
        server.host = without_brackets(*host);
        if (!is_host(server.host))
            throw element.fault("the host " + quoted(*host) +
                                " is neither a host's name nor an address");
    }
    server.naming_url = {naming ? *naming : naming_url(server.host, port_of(element)),
                         element.origin()};
}

class Parser {
public:
    Parser(const std::string& of_text, const Timeouts& from_environment)
        : text(of_text), lines(of_text), environment(from_environment)
    {
    }

    File parse()
    {
        check_characters(text, lines);
        load(document, text, lines);
        find_root();
        // Without recursion, which a file of a thousand levels would overflow.
        for (pugi::xml_node node = root.first_child(); node;) {
            pugi::xml_node next = take(node) ? node.first_child() : pugi::xml_node();
            while (!next && node != root) {
                next = node.next_sibling();
                if (!next)
                    node = node.parent();
            }
            node = next;
        }
        if (!file.local.empty() && !lists(file, file.local))
            throw Fault(file.root_line, "local names the server " + quoted(file.local) +
                                            ", which is not listed");
        return std::move(file);
    }

private:
    void find_root()
    {
        for (const pugi::xml_node& node : document) {
            if (node.type() != pugi::node_element)
                refuse_text(node, text, lines);
            else if (root)
                throw Fault(line_of(node), "a second root element");
            else
                root = node;
        }
        if (!root)
            throw Fault(1, "the root element velmo is missing");
        file.root_line = line_of(root);
        if (root.name() != std::string_view(root_name))
            throw Fault(file.root_line,
                        "the root element is " + quoted(root.name()) + " instead of velmo");

        const Element element(root, file.root_line, root_attributes);
        if (const std::string* local = element.get("local")) {
            if (local->empty())
                throw element.fault("local is empty");
            file.local = *local;
        }
        root_timeouts = element.timeouts();
        file.connect_timeout = first_set({environment.connect, root_timeouts.connect},
                                         defaults::connect_timeout);
    }

    // A node below the root; whether to go on with what it contains.
    bool take(const pugi::xml_node& node)
    {
        if (node.type() != pugi::node_element) {
            refuse_text(node, text, lines);
            return false;
        }
        const std::string_view name = node.name();
        if (name == daemon_section && node.parent() == root)
            return false;
        if (name != server_name)
            throw Fault(line_of(node),
                        "unknown element " + quoted(name) + " in " + node.parent().name());
        take_server(node);
        return true;
    }

    void take_server(const pugi::xml_node& node)
    {
        const Element element(node, line_of(node), server_attributes);
        Server server;
        server.line = element.line;
        server.name = name_of(element);
        const auto [known, is_new] = line_by_name.emplace(server.name, server.line);
        if (!is_new)
            throw element.fault("the server " + quoted(server.name) +
                                " is already there on line " +
                                std::to_string(known->second));
        server.parent = node.parent().attribute("name").value();
        server.role = role_of(element);
        set_naming(server, element);
        const Timeouts own = element.timeouts();
        server.call_timeout = first_set({environment.call, own.call, root_timeouts.call},
                                        defaults::call_timeout);
        server.naming_timeout =
            first_set({environment.naming, own.naming, root_timeouts.naming},
                      defaults::naming_timeout);
        file.servers.push_back(std::move(server));
    }

    int line_of(const pugi::xml_node& node) { return lines.at(node.offset_debug()); }

    const std::string& text;
    Lines lines;
    const Timeouts& environment;
    pugi::xml_document document;
    pugi::xml_node root;
    Timeouts root_timeouts;
    std::map<std::string, int> line_by_name;
    File file;
};

} // namespace

File parse_file(const std::string& text, const Timeouts& environment)
{
    return Parser(text, environment).parse();
}

bool lists(const File& file, const std::string& name)
{
    return std::any_of(file.servers.begin(), file.servers.end(),
                       [&](const Server& server) { return server.name == name; });
}

} // namespace velmo::settings
