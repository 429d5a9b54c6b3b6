// Dropping references before the broker goes.
#ifndef VELMO_REGISTRY_EXIT_CLEANUP_H
#define VELMO_REGISTRY_EXIT_CLEANUP_H

// Has the process's registry drop its references when the process exits, early
// enough: the registry's destructor comes after the ORB is gone, when releasing a
// reference crashes. To be called once the naming client has its ORB, so that its
// own handler, registered before, runs after this one. Cheap when called again.
void release_references_at_exit();

#endif
