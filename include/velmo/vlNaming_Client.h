// Finds the objects that servers publish through their naming services.
#ifndef VELMO_VLNAMING_CLIENT_H
#define VELMO_VLNAMING_CLIENT_H

#include "VelmoC.h"
#include "vl_export.h"

// Which naming service belongs to a server, and the time-outs, come from the
// settings. Uses the ORB that the application has made, or makes one. All
// members may be called from any thread.
class VL_EXPORT vlNaming_Client {
public:
    // The process's client; never null.
    static vlNaming_Client* GetInstance();

    // Ends the client: drops its naming contexts and its hold on the ORB. The ORB
    // itself lives on until the process ends, whoever made it: destroying one waits
    // for every call under way and kills the references that others hold. Calls
    // under way finish; a later call of a member starts anew. Happens by itself when
    // the process exits.
    static void ExitInstance();

    // The object bound under a name ("KEY" or "/REALM/KEY") for a server, with
    // the server's call time-out set on it. Nil when the settings do not list
    // the server, when the naming service is down or does not answer within the
    // naming time-out, when it has no such name, and when the object is not of
    // the interface that belongs to the key. Never throws. After a time-out the
    // server's naming service is left alone for a short, growing while.
    CORBA::Object_var GetReferenceWithServerName(const char* server, const char* name);

    // Whether the naming service of a server answers: its URL when it does
    // (valid until the process ends), null otherwise. Blocks at most for the
    // naming time-out; never throws.
    const char* isConnect(const char* server);
};

#endif
