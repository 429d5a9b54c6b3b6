// The broker's headers, whichever broker it is.
#ifndef VELMO_ORB_CORBA_H
#define VELMO_ORB_CORBA_H

#if defined(VELMO_ORB_TAO)
// Includes the static object that runs TAO_POA_Initializer::init() at load.
#include <tao/PortableServer/PortableServer.h>

#include <orbsvcs/CosNamingC.h>
#include <tao/ORB.h>
#include <tao/Object.h>
#include <tao/SystemException.h>
#elif defined(VELMO_ORB_OMNIORB)
#include <omniORB4/CORBA.h>
#include <omniORB4/Naming.hh>
#else
#error "the build defines VELMO_ORB_TAO or VELMO_ORB_OMNIORB"
#endif

#endif
