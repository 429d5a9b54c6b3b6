// What changes in a realm, for whoever keeps it on disk.
//
// A change says what is there from now on, or what is gone; it does not say by which
// operation. All changes in their order, applied to nothing, give the realm.
#ifndef VELMO_SERVER_MODEL_JOURNAL_H
#define VELMO_SERVER_MODEL_JOURNAL_H

#include <utility>
#include <variant>

#include "server/model/images.h"
#include "server/model/template.h"

namespace velmo::model {

// A point, new or with another value or description, is a PointImage.
struct PointRemoved {
    std::string name;
};
struct AllPointsRemoved {};

// A port without its queues, new or changed.
struct PortChanged {
    Handle handle = 0;
    std::string name;
    std::uint32_t capacity = 0;
    std::string host;
    bool copies = true;
    std::uint64_t turn = 0;
};

// A new connection, the last one of all, is a ConnectionImage.
struct ConnectionRemoved {
    Handle from = 0;
    Handle to = 0;
};

// The queues of a port. In `unanswered` entries have no data.
enum class Queue { packets, replies, unanswered };

struct Queued {
    Handle port = 0;
    Queue queue = Queue::packets;
    std::int64_t number = 0; // of two entries the older one has the lower
    Handle sender = 0;
    Data data;
};
struct Dequeued {
    Handle port = 0;
    Queue queue = Queue::packets;
    std::int64_t number = 0;
};
struct AllPortsRemoved {}; // with their queues and connections

// A declaration, and an event, new or changed, are an EventDeclarationImage and an
// EventImage.
struct AllEventsRemoved {}; // with their declarations

// A contender, new or changed, is a ContenderImage; a group whose epoch has risen is
// a GroupImage.
struct ContenderRemoved {
    std::string group;
    std::string name;
};
struct GroupRemoved {
    std::string name;
};

// The templates beside the built-in ones, in place of those there were.
struct TemplatesChanged {
    std::vector<TemplateDefinition> all;
};

using Change =
    std::variant<PointImage, PointRemoved, AllPointsRemoved, PortChanged, ConnectionImage,
                 ConnectionRemoved, Queued, Dequeued, AllPortsRemoved,
                 EventDeclarationImage, EventImage, AllEventsRemoved, ContenderImage,
                 ContenderRemoved, GroupImage, GroupRemoved, TemplatesChanged>;
using Changes = std::vector<Change>;

// Takes the changes of one realm. It only takes note: whether they are safe is a matter
// between it and whoever answers the client, who is on the same thread. Any function from
// any thread.
class Journal {
public:
    virtual ~Journal() = default;

    // Takes changes that are to be kept together or not at all. Called under the lock
    // that orders them, and so in their order; does not block for longer than a lock.
    virtual void append(Changes changes) = 0;

    // Notes that this thread's answer is based on what other threads have appended so
    // far. Called under the lock that they did it under.
    virtual void rely() = 0;

    // Keeps what is appended between the two together. To be used as Together.
    virtual void begin_together() = 0;
    virtual void end_together() = 0;
};

class Together {
public:
    explicit Together(Journal* its_journal) : journal(its_journal) // null: none
    {
        if (journal)
            journal->begin_together();
    }
    ~Together()
    {
        if (journal)
            journal->end_together();
    }
    Together(const Together&) = delete;
    Together& operator=(const Together&) = delete;

private:
    Journal* const journal;
};

// A service's way to its journal, if it has one. To be used under the service's lock.
class Recorder {
public:
    // The journal must outlive this. What is there already is not appended.
    void keep_in(Journal& its_journal) { journal = &its_journal; }

    // Whether it is of use to add anything.
    bool on() const { return journal != nullptr; }

    void add(Change change)
    {
        if (journal)
            changes.push_back(std::move(change));
    }

    // Appends what was added, as one.
    void close()
    {
        if (!changes.empty())
            journal->append(std::exchange(changes, {}));
    }

    void append(Change change)
    {
        add(std::move(change));
        close();
    }

    void rely() const
    {
        if (journal)
            journal->rely();
    }

private:
    Journal* journal = nullptr;
    Changes changes;
};

} // namespace velmo::model

#endif
