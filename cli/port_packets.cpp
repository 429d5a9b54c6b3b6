// velmo port send, receive, reply, call.
#include <cstdint>

#include "cli/groups.h"
#include "cli/memory.h"
#include "cli/payload.h"
#include "cli/ports.h"
#include "cli/text.h"
#include "cli/value_output.h"

namespace velmo::cli {

namespace {

constexpr unsigned int usual_call_ms = 5000;

void add_port(CLI::App& app, std::string& port)
{
    app.add_option("PORT", port, "Name or handle of the port")->required();
}

// What send, reply and call have in common: bytes that go to a port.
class Sending {
public:
    void declare(CLI::App& app)
    {
        add_port(app, port);
        data.declare(app, "DATA", "What to send; standard input without");
    }

protected:
    using Function = int (*)(unsigned int port, const void* data, int length,
                             unsigned int option, const char* server, const char* realm);

    // Before anything else is done: standard input may take its time, or be wrong.
    std::string bytes() const { return data.bytes(); }

    void send(const Session& session, const Interruption& interruption, unsigned int handle,
              const std::string& bytes, Function function, const Waiting& waiting,
              const char* action = "send on") const
    {
        const int code =
            waiting.run(session, interruption, SENDMSG_TIMEOUT, [&](unsigned int option) {
                return function(handle, bytes.data(), static_cast<int>(bytes.size()),
                                option, session.server(), session.realm());
            });
        session.check(code, std::string(action) + " port " + in_quotes(port));
    }

    std::string port;

private:
    Payload data;
};

struct Send : Sending {
    void declare(CLI::App& app)
    {
        Sending::declare(app);
        app.add_flag("--front", front, "Sends to the head of the queue");
        waiting.declare(app, "room");
    }

    void run(Session& session) const
    {
        const std::string packet = bytes();
        const unsigned int handle = port_handle(session, port);
        const Interruption interruption;
        send(session, interruption, handle, packet,
             front ? vl_send_packet_to_front : vl_send_packet, waiting);
        session.out.done({{"port", json_text(port)}, {"size", packet.size()}},
                         "sent " + counted(packet.size(), "byte") + " on port " +
                             in_quotes(port));
    }

private:
    Waiting waiting;
    bool front = false;
};

struct Reply : Sending {
    void declare(CLI::App& app)
    {
        Sending::declare(app);
        waiting.declare(app, "room");
    }

    void run(Session& session) const
    {
        const std::string reply = bytes();
        const unsigned int handle = port_handle(session, port);
        const Interruption interruption;
        send(session, interruption, handle, reply, vl_reply_packet, waiting,
             "answer a packet of");
        session.out.done({{"port", json_text(port)}, {"size", reply.size()}},
                         "answered a packet of port " + in_quotes(port) + " with " +
                             counted(reply.size(), "byte"));
    }

private:
    Waiting waiting;
};

// Packets and replies, as they are shown.
class Shown {
public:
    void declare(CLI::App& app) { output.declare(app); }
    void declare_kind(CLI::App& app) { output.declare_kind(app); }

    void one(Session& session, const std::string& port, const Block& packet) const
    {
        output.show(session, document(port, packet), kind(), packet.bytes());
    }

    void line(Session& session, const std::string& port, const Block& packet) const
    {
        output.show_line(session, document(port, packet), kind(), packet.bytes());
    }

    bool is_to_file() const { return output.is_to_file(); }

private:
    static Json document(const std::string& port, const Block& packet)
    {
        return {{"port", json_text(port)}, {"size", packet.bytes().size()}};
    }

    Kind kind() const { return kind_of(output.said_kind()).value_or(Kind::bytes); }

    ValueOutput output;
};

struct Receive {
    void declare(CLI::App& app)
    {
        add_port(app, port);
        CLI::Option* sender =
            app.add_option("--from", from, "Only packets that this port has sent")
                ->type_name("PORT");
        app.add_flag("--reply", reply,
                     "Takes the oldest reply to what was sent on this port instead")
            ->excludes(sender);
        CLI::Option* all = app.add_flag("--follow", follow,
                                        "Goes on until interrupted, one packet a line");
        app.add_option("--count", count, "Ends after so many packets")
            ->needs(all)
            ->check(CLI::PositiveNumber.description(""))
            ->type_name("N");
        waiting.declare(app, "a packet");
        shown.declare(app);
    }

    void run(Session& session) const
    {
        if (follow && shown.is_to_file())
            throw misuse("--follow and --file do not go together",
                         "send the lines to a file with the shell's >");
        const Interruption interruption;
        const unsigned int handle = port_handle(session, port);
        const unsigned int sender = from.empty() ? 0 : port_handle(session, from);
        const int time_out = reply ? REPLAY_TIMEOUT : TIME_OUT;
        for (std::size_t received = 0;;) {
            Block packet;
            const auto take = [&](unsigned int option) {
                return receive(session, handle, sender, packet, option);
            };
            const int code = follow
                                 ? Waiting::forever(session, interruption, time_out, take)
                                 : waiting.run(session, interruption, time_out, take);
            session.check(code, (reply ? "get a reply on port " : "receive on port ") +
                                    in_quotes(port));
            if (!follow)
                return shown.one(session, port, packet);
            shown.line(session, port, packet);
            if (++received == count)
                return;
        }
    }

private:
    int receive(const Session& session, unsigned int handle, unsigned int sender,
                Block& packet, unsigned int option) const
    {
        if (reply)
            return vl_receive_reply2(handle, packet.out(), packet.length_out(), option,
                                     session.server(), session.realm());
        void* const wanted = reinterpret_cast<void*>(static_cast<std::uintptr_t>(sender));
        return vl_receive_packetv(handle, wanted, packet.out(), packet.length_out(), option,
                                  session.server(), session.realm());
    }

    std::string port, from;
    bool reply = false;
    bool follow = false;
    std::size_t count = 0; // 0: without an end
    Waiting waiting;
    Shown shown;
};

struct Call : Sending {
    void declare(CLI::App& app)
    {
        Sending::declare(app);
        waiting.declare(app, "room, and then for the reply", usual_call_ms);
        shown.declare_kind(app);
    }

    void run(Session& session) const
    {
        const std::string packet = bytes();
        const unsigned int handle = port_handle(session, port);
        const Interruption interruption;
        send(session, interruption, handle, packet, vl_send_packet, waiting);
        Block reply;
        const int code =
            waiting.run(session, interruption, REPLAY_TIMEOUT, [&](unsigned int option) {
                return vl_receive_reply2(handle, reply.out(), reply.length_out(), option,
                                         session.server(), session.realm());
            });
        session.check(code, "get a reply on port " + in_quotes(port));
        shown.one(session, port, reply);
    }

private:
    Waiting waiting;
    Shown shown;
};

} // namespace

void add_port_packets(Group& port)
{
    port.verb<Send>("send", "Sends a packet");
    port.verb<Receive>("receive", "Takes the oldest packet");
    port.verb<Reply>("reply", "Answers the oldest packet not answered yet");
    port.verb<Call>("call", "Sends a packet and waits for the reply");
}

} // namespace velmo::cli
