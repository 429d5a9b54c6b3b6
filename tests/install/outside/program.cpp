// A program in C++ of another project: the classes, and a remote call of its own.
#include <cstdio>

#include <velmo/CQuilp.h>
#include <velmo/VelmoLang.h>
#include <velmo/vlNaming_Client.h>
#include <velmo/vlReferenceContainer.h>
#include <velmo/vlServerInfoXmlImpl.h>
#include <velmo/vl_api.h>

int main()
{
    const auto own = vlServerInfoXmlImpl().GetServerInfo("own");
    if (own.size() != 1 || !vlNaming_Client::GetInstance()->isConnect(own[0].name))
        return 1;
    Velmo::DT_PORT_SVC::Port_Factory_var ports =
        vlReferenceContainer::instance()->GetPortReferenceWithServerName(own[0].name, "");
    if (CORBA::is_nil(ports) || ports->create_port("outside", 7, 0) != VL_OK)
        return 2;
    CQuilp::instance()->vl_log("created a port of %s", own[0].name);
    std::printf("%ls\n", VelmoLang::GetInstance()->GetString("VL_OK"));
}
