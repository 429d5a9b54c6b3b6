// What holds while a thread is inside an exported function.
#ifndef VELMO_API_ENTRY_H
#define VELMO_API_ENTRY_H

#include <pthread.h>

#include "util/fork.h"

namespace velmo::api {

// The thread is not cancelled: pthread_cancel() unwinds the stack with an exception that
// nobody may hold up, whereas the library lets nothing out, and the process would abort.
class Entry {
public:
    Entry() noexcept
    {
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before);
        util::Fork::cut_off_children();
    }
    ~Entry() { pthread_setcancelstate(before, nullptr); }
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

private:
    int before = PTHREAD_CANCEL_ENABLE;
};

} // namespace velmo::api

#endif
