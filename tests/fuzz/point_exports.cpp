// Exports that read a point.

#include "tests/fuzz/exports.h"

#include <algorithm>
#include <cstdlib>

#include "vl_api.h"

namespace velmo::tests {

namespace {

// A negative size cuts nothing: the buffer has to be large enough for any value.
void get_data_template_point(Call& call)
{
    const char* point = call.input.text();
    const std::string value = call.reply.data.value_or("");
    const bool whole = call.input.once_in(4);
    Buffer buffer(!whole && call.input.once_in(2) ? call.input.index(100) : value.size());
    const int size = whole ? -1 - static_cast<int>(call.input.index(100))
                           : static_cast<int>(buffer.size());
    void* given = call.input.once_in(8) ? nullptr : buffer.pointer();
    call.refuse_if(!given && size != 0);
    call.check({102, "get_DTP M/W Error "}, [&] {
        return vl_get_data_template_point(point, given, size, call.server, call.realm);
    });
    buffer.require_beginning(call.succeeded() ? value : "");
}

void get_data_template_point_description(Call& call)
{
    const char* point = call.input.text();
    call.check_text(nullptr, [&] {
        return vl_get_data_template_point_description(point, call.server, call.realm);
    });
}

void get_data_template_point_type(Call& call)
{
    const char* point = call.input.text();
    call.check_text("get_DTP_type M/W Error ", [&] {
        return vl_get_data_template_point_type(point, call.server, call.realm);
    });
}

// What is known about a point; any of the places may be missing.
struct Info {
    explicit Info(Input& input)
        : text1_given(!input.once_in(16)), text2_given(!input.once_in(16)),
          data_given(!input.once_in(16)), length_given(!input.once_in(16)),
          data(input.once_in(2) ? std::malloc(5) : nullptr), earlier(data)
    {
    }
    ~Info() { std::free(data); }
    Info(const Info&) = delete;
    Info& operator=(const Info&) = delete;

    char** text1_pointer() { return text1_given ? &text1 : nullptr; }
    char** text2_pointer() { return text2_given ? &text2 : nullptr; }
    void** data_pointer() { return data_given ? &data : nullptr; }
    unsigned int* length_pointer() { return length_given ? &length : nullptr; }

    void check(const Call& call, bool with_length) const
    {
        const bool called = call.answered() || call.end() == Call::End::fails;
        if (called) {
            call.take_text(text1, call.succeeded());
            call.take_more_text(text2, call.succeeded());
        } else {
            require(text1 == untouched && text2 == untouched, "the texts are untouched");
        }
        const std::string value = call.reply.data.value_or("");
        if (call.succeeded()) {
            require(data, "a value is a block even when it is empty");
            require(std::equal(value.begin(), value.end(), static_cast<char*>(data)),
                    "the value is the server's");
        } else {
            require(data == earlier, "the data of the call before stay");
        }
        require(length == (call.succeeded() && with_length ? value.size() : 77u),
                "the length is set after success alone");
    }

    bool text1_given, text2_given, data_given, length_given;
    char* const untouched = reinterpret_cast<char*>(this);
    char* text1 = untouched;
    char* text2 = untouched;
    void* data;
    void* earlier; // compared alone: a successful call frees it
    unsigned int length = 77;
};

void dtp_info(Call& call)
{
    const char* point = call.input.text();
    Info info(call.input);
    call.refuse_if(!info.text1_given || !info.text2_given || !info.data_given);
    call.check({150, "get_dtp_info M/W Error "}, [&] {
        return get_dtp_info(point, info.text1_pointer(), info.text2_pointer(),
                            info.data_pointer(), call.server, call.realm);
    });
    info.check(call, false);
}

void dtp_info2(Call& call)
{
    const char* point = call.input.text();
    Info info(call.input);
    call.refuse_if(!info.text1_given || !info.text2_given || !info.data_given ||
                   !info.length_given);
    call.check({150, "get_dtp_info2 M/W Error "}, [&] {
        return get_dtp_info2(point, info.text1_pointer(), info.text2_pointer(),
                             info.data_pointer(), info.length_pointer(), call.server,
                             call.realm);
    });
    info.check(call, true);
}

} // namespace

Exercises point_exports()
{
    return {get_data_template_point, get_data_template_point_description,
            get_data_template_point_type, dtp_info, dtp_info2};
}

} // namespace velmo::tests
