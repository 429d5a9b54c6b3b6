#include "tests/support/service_servants.h"

#include <memory>

namespace velmo::tests {

namespace {

// The same as raising it in each operation, where no value could be returned.
[[noreturn]] void not_implemented()
{
    throw CORBA::NO_IMPLEMENT();
}

} // namespace

CORBA::Long PointServant::create_DTP(const char*, const char*)
{
    not_implemented();
}

CORBA::Long PointServant::create_set(const char*, const char*, const Velmo::DATA_BUFFER&)
{
    not_implemented();
}

CORBA::Long PointServant::get_DTP(const char*, Velmo::DATA_BUFFER_out)
{
    not_implemented();
}

CORBA::Long PointServant::set_DTP(const char*, const Velmo::DATA_BUFFER&)
{
    not_implemented();
}

CORBA::Long PointServant::remove_DTP(const char*)
{
    not_implemented();
}

CORBA::Long PointServant::get_all_point_by_typename(Velmo::NAME_SEQ_out, const char*)
{
    not_implemented();
}

CORBA::Long PointServant::get_all_point_name(Velmo::NAME_SEQ_out)
{
    not_implemented();
}

char* PointServant::get_DTP_type(const char*)
{
    not_implemented();
}

CORBA::Long PointServant::make_DTP_snapshot()
{
    not_implemented();
}

CORBA::Long PointServant::load_DTP_snapshot()
{
    not_implemented();
}

CORBA::Long PointServant::get_dtp_info(const char*, CORBA::String_out, CORBA::String_out,
                                       Velmo::DATA_BUFFER_out)
{
    not_implemented();
}

CORBA::Long PointServant::set_DTP_description(const char*, const char*)
{
    not_implemented();
}

char* PointServant::get_DTP_description(const char*)
{
    not_implemented();
}

CORBA::Long PointServant::check_null_data(Velmo::NAME_SEQ_out)
{
    not_implemented();
}

CORBA::Long TemplateServant::get_query_data_type(Velmo::NAME_SEQ_out)
{
    not_implemented();
}

CORBA::Long TemplateServant::make_DT_snapshot()
{
    not_implemented();
}

CORBA::Long ContentionServant::out_contend(const char*, const char*)
{
    not_implemented();
}

CORBA::Long ContentionServant::regist_contender(const char*, const char*,
                                                const Velmo::DATA_BUFFER&, const char*,
                                                CORBA::Long)
{
    not_implemented();
}

CORBA::Long ContentionServant::update_contender(const char*, const char*)
{
    not_implemented();
}

CORBA::Long ServiceManagerServant::get_releam_seq(Velmo::NAME_SEQ_out names)
{
    if (!realms)
        not_implemented();
    const Realms answer = realms();
    if (!answer.names)
        return answer.result;
    auto sequence = std::make_unique<Velmo::NAME_SEQ>();
    sequence->length(static_cast<CORBA::ULong>(answer.names->size()));
    for (CORBA::ULong i = 0; i < sequence->length(); ++i)
        (*sequence)[i] = (*answer.names)[i].c_str();
    names = sequence.release();
    return answer.result;
}

} // namespace velmo::tests
