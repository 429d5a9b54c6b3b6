// Exports that fill lists.

#include "tests/fuzz/exports.h"

#include <cstring>

#include "tests/fuzz/name_list_out.h"
#include "vl_api.h"

namespace velmo::tests {

namespace {

// get(list) asks for the names of points, which come whatever the result.
template <class Get>
void check_point_names(Call& call, const Codes& codes, Get get)
{
    NameListOut list(call.input);
    call.refuse_if(!list.pointer());
    call.check(codes, [&] { return get(list.pointer()); });
    if (call.answered() && call.reply.names)
        list.require_names(*call.reply.names);
    else
        list.require_untouched();
}

void get_all_point_name(Call& call)
{
    check_point_names(call, {145, "get_all_point_name M/W Error "}, [&](NameList* list) {
        return vl_get_all_point_name(list, call.server, call.realm);
    });
}

void get_all_point_by_typename(Call& call)
{
    const char* type = call.input.text();
    check_point_names(
        call, {147, "get_all_point_by_typename M/W Error "}, [&](NameList* list) {
            return vl_get_all_point_by_typename(list, type, call.server, call.realm);
        });
}

void check_null_data(Call& call)
{
    check_point_names(call, {146}, [&](NameList* list) {
        return vl_check_null_data(list, call.server, call.realm);
    });
}

void get_query_data_type(Call& call)
{
    NameListOut list(call.input);
    call.refuse_if(!list.pointer());
    call.check({140}, [&] {
        return vl_get_query_data_type(list.pointer(), call.server, call.realm);
    });
    if (call.succeeded() && call.reply.names)
        list.require_names(*call.reply.names);
    else
        list.require_untouched();
}

void com_chennal_seq(Call& call)
{
    NameListOut list(call.input);
    call.refuse_at_once_if(!list.pointer());
    call.check({143},
               [&] { return vl_com_chennal_seq(list.pointer(), call.server, call.realm); });
    if (!call.succeeded())
        return list.require_cleared();
    Script::Names names = call.reply.names.value_or(Script::Names());
    const Script::Names more = call.reply.more_names.value_or(Script::Names());
    names.insert(names.end(), more.begin(), more.end());
    list.require_names(names);
}

// The server's own result says nothing.
void releam_seq(Call& call)
{
    NameListOut list(call.input);
    call.ignore_realm();
    call.refuse_at_once_if(!list.pointer());
    call.success = VL_OK;
    call.check({137, nullptr, NULL_SERVER_NAME, VL_OK},
               [&] { return vl_releam_seq(list.pointer(), call.server); });
    if (call.end() == Call::End::no_reference)
        list.require_names({"ROOT"});
    else if (call.answered() && call.reply.names)
        list.require_names(*call.reply.names);
    else
        list.require_cleared();
}

// The first text runs on through the area of the second.
void require_texts(const ConnectionBlock& block, const Script::Pairs::value_type& texts)
{
    char areas[sizeof block.first_text + sizeof block.second_text];
    std::memcpy(areas, block.first_text, sizeof block.first_text);
    std::memcpy(areas + sizeof block.first_text, block.second_text,
                sizeof block.second_text);
    require(strnlen(areas, sizeof areas) < sizeof areas, "the first text ends");
    require(areas == texts.first.substr(0, sizeof areas - 1), "the first text, cut");
    if (texts.first.size() < sizeof block.first_text) {
        require(strnlen(block.second_text, sizeof block.second_text) <
                    sizeof block.second_text,
                "the second text ends");
        require(block.second_text == texts.second.substr(0, sizeof block.second_text - 1),
                "the second text, cut");
    }
}

void get_connection_info(Call& call)
{
    ConnectionBlock earlier{};
    ConnectionList list{&earlier, 77};
    ConnectionList* given = call.input.once_in(8) ? nullptr : &list;
    call.refuse_at_once_if(!given);
    call.check({151},
               [&] { return vl_get_connection_info(given, call.server, call.realm); });
    if (!given)
        return;
    const ConnectionBlock* block = list.first;
    int count = 0;
    if (call.succeeded() && call.reply.connections) {
        for (const auto& texts : *call.reply.connections) {
            require(block, "the list is long enough");
            require_texts(*block, texts);
            block = block->next;
            ++count;
        }
    }
    require(!block && list.count == count, "the list is no longer than that");
    vl_destory_connection_seq(&list);
    require(list.count == 0, "nothing is left");
}

void destory_connection_seq(Call& call)
{
    ConnectionBlock alive{};
    ConnectionList list{&alive, 0};
    if (call.input.once_in(2))
        list.count = INT32_MIN + static_cast<int>(call.input.index(INT32_MAX));
    vl_destory_connection_seq(&list);
    require(list.count <= 0 && list.first == &alive, "an empty list is let alone");
    vl_destory_connection_seq(nullptr);
}

} // namespace

Exercises list_exports()
{
    return {get_all_point_name,  get_all_point_by_typename, check_null_data,
            get_query_data_type, com_chennal_seq,           releam_seq,
            get_connection_info, destory_connection_seq};
}

} // namespace velmo::tests
