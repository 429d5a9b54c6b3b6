/* Visibility of what the Velmo libraries export; everything else is hidden. */
#ifndef VELMO_VL_EXPORT_H
#define VELMO_VL_EXPORT_H

#if defined(__GNUC__)
#define VL_EXPORT __attribute__((visibility("default")))
#else
#define VL_EXPORT
#endif

#endif
