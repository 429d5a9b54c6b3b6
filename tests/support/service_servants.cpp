#include "tests/support/service_servants.h"

namespace velmo::tests {

CORBA::Long PointServant::create_DTP(const char* point_name, const char* template_name)
{
    return asked->reply_to("create_DTP", point_name, template_name).result;
}

CORBA::Long PointServant::create_set(const char* set_name, const char* template_name,
                                     const Velmo::DATA_BUFFER& data)
{
    return asked->reply_to("create_set", set_name, template_name, data).result;
}

CORBA::Long PointServant::get_DTP(const char* point_name, Velmo::DATA_BUFFER_out value)
{
    const Script::Reply reply = asked->reply_to("get_DTP", point_name);
    deliver(value, reply.data);
    return reply.result;
}

CORBA::Long PointServant::set_DTP(const char* point_name, const Velmo::DATA_BUFFER& value)
{
    return asked->reply_to("set_DTP", point_name, value).result;
}

CORBA::Long PointServant::remove_DTP(const char* point_name)
{
    return asked->reply_to("remove_DTP", point_name).result;
}

CORBA::Long PointServant::get_all_point_by_typename(Velmo::NAME_SEQ_out names,
                                                    const char* type_name)
{
    const Script::Reply reply = asked->reply_to("get_all_point_by_typename", type_name);
    deliver(names, reply.names);
    return reply.result;
}

CORBA::Long PointServant::get_all_point_name(Velmo::NAME_SEQ_out names)
{
    const Script::Reply reply = asked->reply_to("get_all_point_name");
    deliver(names, reply.names);
    return reply.result;
}

char* PointServant::get_DTP_type(const char* point_name)
{
    return CORBA::string_dup(asked->reply_to("get_DTP_type", point_name).text.c_str());
}

CORBA::Long PointServant::make_DTP_snapshot()
{
    return asked->reply_to("make_DTP_snapshot").result;
}

CORBA::Long PointServant::load_DTP_snapshot()
{
    return asked->reply_to("load_DTP_snapshot").result;
}

CORBA::Long PointServant::get_dtp_info(const char* point_name, CORBA::String_out type_name,
                                       CORBA::String_out description,
                                       Velmo::DATA_BUFFER_out value)
{
    const Script::Reply reply = asked->reply_to("get_dtp_info", point_name);
    type_name = CORBA::string_dup(reply.text.c_str());
    description = CORBA::string_dup(reply.more_text.c_str());
    deliver(value, reply.data);
    return reply.result;
}

CORBA::Long PointServant::set_DTP_description(const char* point_name,
                                              const char* description)
{
    return asked->reply_to("set_DTP_description", point_name, description).result;
}

char* PointServant::get_DTP_description(const char* point_name)
{
    return CORBA::string_dup(
        asked->reply_to("get_DTP_description", point_name).text.c_str());
}

CORBA::Long PointServant::check_null_data(Velmo::NAME_SEQ_out names)
{
    const Script::Reply reply = asked->reply_to("check_null_data");
    deliver(names, reply.names);
    return reply.result;
}

CORBA::Long TemplateServant::get_query_data_type(Velmo::NAME_SEQ_out type_names)
{
    const Script::Reply reply = asked->reply_to("get_query_data_type");
    deliver(type_names, reply.names);
    return reply.result;
}

CORBA::Long TemplateServant::make_DT_snapshot()
{
    return asked->reply_to("make_DT_snapshot").result;
}

CORBA::Long ContentionServant::out_contend(const char* group, const char* contender)
{
    return asked->reply_to("out_contend", group, contender).result;
}

CORBA::Long ContentionServant::regist_contender(const char* group, const char* contender,
                                                const Velmo::DATA_BUFFER& data,
                                                const char* role, CORBA::Long priority)
{
    return asked->reply_to("regist_contender", group, contender, data, role, priority)
        .result;
}

CORBA::Long ContentionServant::update_contender(const char* group, const char* contender)
{
    return asked->reply_to("update_contender", group, contender).result;
}

CORBA::Long ServiceManagerServant::get_releam_seq(Velmo::NAME_SEQ_out names)
{
    const Script::Reply reply = asked->reply_to("get_releam_seq");
    deliver(names, reply.names);
    return reply.result;
}

} // namespace velmo::tests
