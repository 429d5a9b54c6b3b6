// Logging for everything that belongs to Velmo.
#ifndef VELMO_CQUILP_H
#define VELMO_CQUILP_H

#include "vl_export.h"

// Writes log lines with time stamp, process and thread. VELMO_LOG chooses where
// to, once, at the first line: "stderr" (the default), "syslog" or "file:PATH".
// A file (PATH = NAME.EXT) is appended to and becomes NAME.1.EXT, up to
// NAME.5.EXT, before it grows beyond 10 MiB. While a line cannot be written to
// where it should, it goes to standard error, after the reason.
class VL_EXPORT CQuilp {
public:
    // The process's log; never null, usable until the process has ended.
    static CQuilp* instance();

    // Writes one line, printf-style. Line breaks, other control characters and
    // bytes that are not UTF-8 are escaped, and a line over 8 KiB is cut. Safe
    // from any thread, but not from a signal handler; never throws; leaves errno
    // alone. Does not wait for a slow disk: when lines come faster than they can
    // be written, the oldest waiting ones are dropped, and their number is
    // logged. While the process ends, and in a child that fork() made of a
    // process that had logged, it returns when the line is written.
    void vl_log(const char* format, ...) __attribute__((format(printf, 2, 3)));

    // Waits until every line logged so far has been written, or a second has
    // passed. For before _exit() or exec(); exit() does it by itself.
    void flush();
};

#endif
