// The skeletons that servants derive from; omniORB puts them in the stubs' headers.
#ifndef VELMO_ORB_SKELETONS_H
#define VELMO_ORB_SKELETONS_H

#include "orb/corba.h"

#if defined(VELMO_ORB_TAO)
#include <orbsvcs/CosNamingS.h>

#include "VelmoS.h"
#include "Velmo_serverS.h"
#else
#include "VelmoC.h"
#include "Velmo_serverC.h"
#endif

#endif
