// What the C functions hand out, given back in time.
#ifndef VELMO_CLI_MEMORY_H
#define VELMO_CLI_MEMORY_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vl_api.h"
#include "vl_util.h"

namespace velmo::cli {

// To be filled by one call.
class Names {
public:
    Names() = default;
    Names(const Names&) = delete;
    Names& operator=(const Names&) = delete;
    ~Names()
    {
        for (unsigned int i = 0; i < list.count; ++i)
            vl_string_free(list.names[i]);
        void* names = list.names;
        vl_free_memory(&names);
    }

    NameList* out() { return &list; }

    std::vector<std::string> all() const
    {
        return std::vector<std::string>(list.names, list.names + list.count);
    }

private:
    NameList list{};
};

// Likewise.
class Connections {
public:
    Connections() = default;
    Connections(const Connections&) = delete;
    Connections& operator=(const Connections&) = delete;
    ~Connections() { vl_destory_connection_seq(&list); }

    ConnectionList* out() { return &list; }
    const ConnectionBlock* first() const { return list.count > 0 ? list.first : nullptr; }

private:
    ConnectionList list{};
};

// Bytes that the library has allocated; may be filled several times by functions that
// free what there was.
class Block {
public:
    Block() = default;
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ~Block() { vl_free_memory(&data); }

    void** out() { return &data; }
    unsigned int* length_out() { return &length; }

    std::string_view bytes() const
    {
        return data ? std::string_view(static_cast<const char*>(data), length)
                    : std::string_view();
    }

private:
    void* data = nullptr;
    unsigned int length = 0;
};

// A string that the library has handed out; NULL is like "".
class Text {
public:
    explicit Text(char* its_text = nullptr) : text(its_text) {}
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ~Text() { vl_string_free(text); }

    char** out() { return &text; } // to be filled once
    bool is_null() const { return !text; }
    std::string str() const { return text ? text : ""; }

private:
    char* text;
};

struct CloseSettings {
    void operator()(vl_settings* settings) const { vl_settings_close(settings); }
};
using Settings = std::unique_ptr<vl_settings, CloseSettings>;

} // namespace velmo::cli

#endif
