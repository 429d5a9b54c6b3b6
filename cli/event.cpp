// velmo event: events that are declared, added, raised and counted.
#include "cli/groups.h"
#include "cli/payload.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

int size_of(const std::string& data)
{
    return static_cast<int>(data.size());
}

void add_event_name(CLI::App& app, std::string& event)
{
    app.add_option("EVENT", event, "Name of the event")->required();
}

// A number as people write it: also 0x10.
void add_id(CLI::App& app, unsigned int& id)
{
    app.add_option("ID", id, "Number of the declaration")->required();
}

struct Declare {
    void declare(CLI::App& app)
    {
        add_id(app, id);
        data.declare(app, "DATA", "What events of this number have before they are raised");
    }

    void run(Session& session) const
    {
        const std::string bytes = data.is_given() ? data.bytes() : "";
        session.check(vl_declare_event(id, bytes.data(), size_of(bytes), session.server(),
                                       session.realm()),
                      "declare events of number " + std::to_string(id));
        session.out.done({{"id", id}, {"size", bytes.size()}},
                         "declared events of number " + std::to_string(id));
    }

    unsigned int id = 0;
    Payload data;
};

struct Add {
    void declare(CLI::App& app)
    {
        add_event_name(app, event);
        add_id(app, id);
    }

    void run(Session& session) const
    {
        session.check(vl_add_event(event.c_str(), id, session.server(), session.realm()),
                      "add event " + in_quotes(event));
        session.out.done({{"event", json_text(event)}, {"id", id}},
                         "added event " + in_quotes(event));
    }

    std::string event;
    unsigned int id = 0;
};

struct Send {
    void declare(CLI::App& app)
    {
        add_event_name(app, event);
        data.declare(app, "DATA", "What has happened; none stands for the declared data");
    }

    void run(Session& session) const
    {
        const std::string bytes = data.is_given() ? data.bytes() : "";
        session.check(vl_send_event(event.c_str(), bytes.data(), size_of(bytes),
                                    session.server(), session.realm()),
                      "raise event " + in_quotes(event));
        session.out.done({{"event", json_text(event)}, {"size", bytes.size()}},
                         "raised event " + in_quotes(event));
    }

    std::string event;
    Payload data;
};

struct Count {
    void declare(CLI::App& app) { add_event_name(app, event); }

    void run(Session& session) const
    {
        int count = 0;
        session.check(
            vl_event_count(event.c_str(), &count, session.server(), session.realm()),
            "count event " + in_quotes(event));
        session.out.result({{"event", json_text(event)}, {"count", count}},
                           std::to_string(count));
    }

    std::string event;
};

struct Clear {
    void declare(CLI::App& app) { add_event_name(app, event); }

    void run(Session& session) const
    {
        session.check(vl_clear_event(event.c_str(), session.server(), session.realm()),
                      "clear event " + in_quotes(event));
        session.out.done({{"event", json_text(event)}},
                         "cleared event " + in_quotes(event));
    }

    std::string event;
};

} // namespace

void add_event_group(Program& program)
{
    Group group(program, "event", "Events: named, counted, with data of the last raise");
    group.verb<Declare>("declare", "Declares what events of a number are like");
    group.verb<Add>("add", "Adds an event of a declared number");
    group.verb<Send>("send", "Raises an event");
    group.verb<Count>("count", "Shows how often an event was raised");
    group.verb<Clear>("clear", "Makes an event one that was never raised");
}

} // namespace velmo::cli
