// The services beside the ports, whose every answer a test decides.
#ifndef VELMO_TESTS_SUPPORT_SERVICE_SERVANTS_H
#define VELMO_TESTS_SUPPORT_SERVICE_SERVANTS_H

#include "orb/server.h"
#include "orb/skeletons.h"
#include "tests/support/script.h"

namespace velmo::tests {

class PointServant : public virtual POA_Velmo::DT_POINT_SVC::DT_Point_Factory,
                     public virtual orb::ServantBase,
                     public Scripted {
public:
    using Scripted::Scripted;

    CORBA::Long create_DTP(const char* point_name, const char* template_name) override;
    CORBA::Long create_set(const char* set_name, const char* template_name,
                           const Velmo::DATA_BUFFER& data) override;
    CORBA::Long get_DTP(const char* point_name, Velmo::DATA_BUFFER_out value) override;
    CORBA::Long set_DTP(const char* point_name, const Velmo::DATA_BUFFER& value) override;
    CORBA::Long remove_DTP(const char* point_name) override;
    CORBA::Long get_all_point_by_typename(Velmo::NAME_SEQ_out names,
                                          const char* type_name) override;
    CORBA::Long get_all_point_name(Velmo::NAME_SEQ_out names) override;
    char* get_DTP_type(const char* point_name) override;
    CORBA::Long make_DTP_snapshot() override;
    CORBA::Long load_DTP_snapshot() override;
    CORBA::Long get_dtp_info(const char* point_name, CORBA::String_out type_name,
                             CORBA::String_out description,
                             Velmo::DATA_BUFFER_out value) override;
    CORBA::Long set_DTP_description(const char* point_name,
                                    const char* description) override;
    char* get_DTP_description(const char* point_name) override;
    CORBA::Long check_null_data(Velmo::NAME_SEQ_out names) override;
};

class TemplateServant : public virtual POA_Velmo::SYSTEM_SVC::DT_manager,
                        public virtual orb::ServantBase,
                        public Scripted {
public:
    using Scripted::Scripted;

    CORBA::Long get_query_data_type(Velmo::NAME_SEQ_out type_names) override;
    CORBA::Long make_DT_snapshot() override;
};

class ContentionServant : public virtual POA_Velmo::HEART_BIT::contender_server,
                          public virtual orb::ServantBase,
                          public Scripted {
public:
    using Scripted::Scripted;

    CORBA::Long out_contend(const char* group, const char* contender) override;
    CORBA::Long regist_contender(const char* group, const char* contender,
                                 const Velmo::DATA_BUFFER& data, const char* role,
                                 CORBA::Long priority) override;
    CORBA::Long update_contender(const char* group, const char* contender) override;
};

class ServiceManagerServant : public virtual POA_Velmo::VelmoServiceManager,
                              public virtual orb::ServantBase,
                              public Scripted {
public:
    using Scripted::Scripted;

    CORBA::Long get_releam_seq(Velmo::NAME_SEQ_out names) override;
};

} // namespace velmo::tests

#endif
