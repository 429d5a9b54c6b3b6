// Whether a write-ahead log is whole.
#ifndef VELMO_SERVER_JOURNAL_LOG_CHECK_H
#define VELMO_SERVER_JOURNAL_LOG_CHECK_H

#include <filesystem>

namespace velmo::journal {

// Looks at the log of a SQLite file that is not open. SQLite takes the log up to the
// first frame whose checksum is wrong. That is right for the last transaction, which an
// interruption may have torn; but when others were written after it, it was complete, and
// is damaged: then to go on without it, and them, would lose what clients rely on.
//
// Throws store::StoreError for such damage, or when the log cannot be read. A log that is
// not there, or was never begun, is whole.
void check_log(const std::filesystem::path& log);

} // namespace velmo::journal

#endif
