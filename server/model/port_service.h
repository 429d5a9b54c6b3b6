// The ports of one realm: named queues of packets, and the connections between them.
//
// Any function from any thread. Ports, connections and limits are in port_service.cpp,
// packets and replies in port_packets.cpp. A single lock guards all of it: what happens
// under it is a few pointer moves (bytes are copied before and after), and a packet that
// goes to several ports must reach all or none. Nobody sleeps with the lock held.
#ifndef VELMO_SERVER_MODEL_PORT_SERVICE_H
#define VELMO_SERVER_MODEL_PORT_SERVICE_H

#include <chrono>
#include <mutex>

#include "server/model/journal.h"
#include "server/model/port_table.h"

namespace velmo::model {

struct PortLimits {
    std::uint32_t default_capacity = 1024;
    std::uint32_t max_capacity = 1u << 20;
    std::size_t queue_bytes = 64u << 20;  // of data in one queue
    std::size_t packet_bytes = 64u << 20; // of one packet, or reply
    std::size_t max_ports = 100000;
    std::chrono::milliseconds max_wait{20000};
    std::chrono::milliseconds caller_check{200}; // how often a waiting caller is looked at
};

// How long an operation waits: not at all, or up to so many milliseconds, or as long
// as the server allows, which is the limit for all of them.
using WaitOption = std::uint32_t;
constexpr WaitOption no_wait = 0;
constexpr WaitOption longest_wait = 0xFFFFFFFF;

struct ConnectionNames {
    std::string from;
    std::string to;
};

// A port at one moment.
struct PortStatus {
    Handle handle = 0;
    std::size_t capacity = 0; // packets
    std::size_t depth = 0;    // packets queued
    std::size_t bytes = 0;    // of data in them
    std::size_t replies = 0;  // queued
    std::size_t waiting = 0;  // receivers that wait for packets
    std::string host;
};

// All ports together.
struct PortTotals {
    std::size_t ports = 0;
    std::size_t packets = 0; // queued
    std::size_t replies = 0; // queued
    std::size_t bytes = 0;   // of data in either
};

struct ChannelNames {
    std::vector<std::string> outgoing;
    std::vector<std::string> incoming;
};

// Results are the codes of vl_result.h, VL_OK being success. An operation that fails
// has changed nothing. INVAILD_PORT_HANDLE: there is no port of that handle, or name.
//
// What may wait is told who calls. A caller that goes is noticed while it waits, and
// its wait ends as if the time were over; no packet and no reply is handed to a caller
// that is known to have gone. One that goes after that loses what it was handed.
class PortService {
public:
    explicit PortService(const PortLimits& limits = {});

    // Nobody may be in a call; see stop().
    ~PortService();

    // Has every change appended to a journal, which must outlive the service. Before any
    // other thread uses the service. What waits for a packet or for room appends nothing;
    // whoever makes an end to its wait does.
    void keep_in(Journal& journal) { recorder.keep_in(journal); }

    // Creates a port. capacity: packets in its queue, and replies in that of the
    // replies; 0 is the default one, and more than the limit means the limit.
    //   INVAILD_NULL_PARAMETER  the name is empty
    //   PARAMETER_ERROR         the name is longer than max_name_bytes, or handle is 0
    //   OBJECT_ALREADY_EXSIT    the name or the handle is in use
    //   MEMORY_ALLOCATION_FAI   there are as many ports as the server allows
    vl_result create_port(std::string_view name, Handle handle, std::uint32_t capacity);

    // Connects: packets sent on one port go to the other. mode: a ConnectionMode.
    //   INVAILD_SINK_MODE      any other mode
    //   INVAILD_PORT_HANDLE    there is no port `from`
    //   RECEIVER_IS_NOT_EXIST  there is no port `to`
    //   ALREADY_CONNECTED      the two are connected, one of them is by an exclusive
    //                          connection, or is at all and this one is exclusive
    vl_result connect_port(std::string_view from, std::string_view to, std::uint32_t mode);

    // Notes the host on which the sender of a ConnectionMode::from_host runs, empty for
    // one that does not know its name.
    //   INVAILD_PORT_HANDLE
    //   PARAMETER_ERROR  host is longer than max_name_bytes
    //   NOT_CONNECTED    the port has no outgoing connection of that mode
    vl_result register_port_host(std::string_view from, std::string_view host);

    // Ends every connection from and to a port. Queued packets stay where they are.
    //   INVAILD_PORT_HANDLE, NOT_CONNECTED
    vl_result disconnect_port(Handle handle);

    // Sends a packet to every port connected from this one, or to itself when there
    // is none. All receivers get it, or none does; but see enable_copy().
    //   INVAILD_PORT_HANDLE
    //   SIZE_IS_NOT_MATCH  larger than the limit, or than a queue can ever hold
    //   WOULD_BLOCK        no room (without a wait), SENDMSG_TIMEOUT (after it)
    vl_result send_packet(Handle handle, const Data& data, WaitOption wait,
                          const Caller& caller = resident_caller());

    // As send_packet(), but it is the next packet to be received.
    vl_result send_packet_to_front(Handle handle, const Data& data, WaitOption wait,
                                   const Caller& caller = resident_caller());

    // Takes the oldest packet; with `from`, the oldest that the port of that handle
    // has sent.
    //   INVAILD_PORT_HANDLE
    //   EMPTY_QUEUE  there is none (without a wait), TIME_OUT (after it)
    vl_result receive_packet(Handle handle, std::uint64_t from, Data& data, WaitOption wait,
                             const Caller& caller = resident_caller());

    // Answers the oldest packet that was received on this port and not answered yet.
    // As many are remembered as its queue holds packets, the oldest being forgotten.
    //   INVAILD_PORT_HANDLE
    //   NON_EXIST_DATA     there is no such packet
    //   SIZE_IS_NOT_MATCH, WOULD_BLOCK, SENDMSG_TIMEOUT  as send_packet(), of the
    //                      replies that wait at the sender
    vl_result reply_packet(Handle handle, const Data& data, WaitOption wait,
                           const Caller& caller = resident_caller());

    // Takes the oldest reply to the packets sent on this port.
    //   INVAILD_PORT_HANDLE
    //   NON_EXIST_DATA  (without a wait) no packet is left that could be answered
    //   EMPTY_QUEUE     (without a wait) no answer has come
    //   REPLAY_TIMEOUT  (after a wait) no answer has come
    vl_result receive_reply(Handle handle, Data& data, WaitOption wait,
                            const Caller& caller = resident_caller());

    // Whether each receiver gets its own copy of a packet (1, as with a new port), or
    // one of them in turn gets it (0; those without room are passed over).
    //   INVAILD_PORT_HANDLE, PARAMETER_ERROR (another value)
    vl_result enable_copy(std::string_view name, std::uint32_t enable);

    // All connections, in the order of connecting.
    std::vector<ConnectionNames> connections() const;

    // The ports with an outgoing connection, and those with an incoming one, in the
    // order of connecting.
    ChannelNames channels() const;

    // A port at one moment; none when there is no such port.
    std::optional<PortStatus> status(std::string_view name) const;

    // The names of all ports, in no order.
    std::vector<std::string> names() const;

    PortTotals totals() const;

    // How many operations wait at this moment.
    std::size_t waiting() const;

    // All of it at one moment; what a waiting receiver was handed is no more part of it.
    // Blocks others for a few pointer copies per packet.
    PortsImage image() const;

    // What restore() would say to it.
    //   MIDPLUSDATA_IS_BAD  a port without a good name and a handle of its own, a
    //                       reference to a port that is not there, no data, connections
    //                       that connect_port() would refuse
    vl_result check(const PortsImage& image) const;

    // Replaces everything by what an image holds, in one step, or nothing. The limits
    // do not hold for what was saved under larger ones: a queue that is too full takes
    // nothing more until it has been emptied that far. Every wait ends as if its time
    // were over, and what waited to be sent is not sent.
    //   MIDPLUSDATA_IS_BAD  as check()
    vl_result restore(const PortsImage& image);

    // Changes the limit for waits that begin from now on.
    void set_max_wait(std::chrono::milliseconds max_wait);

    // Ends all waiting at once, as if the time were over, now and in the future.
    void stop();

private:
    using Lock = std::unique_lock<std::mutex>;
    class Changing;
    class Send;
    class Reply;

    vl_result send(Handle handle, const Data& data, WaitOption wait, const Caller& caller,
                   End end);
    vl_result check_size(const Data& data) const;
    vl_result complete(Lock& lock, Write& write, WaitOption wait, const Caller& caller);
    bool await(Lock& lock, PacketQueue& queue, Receiver& receiver, WaitOption wait);

    // What the journal is told, in words of the service.
    void record(const Port& port);
    void record(const Port& port, Queue queue, const Packet& packet);
    void record_removal(const Port& port, Queue queue, const Packet& packet);
    void record_all();

    // Remembers that a packet of that sender was received and may be answered; as many
    // as its port's capacity, the oldest being forgotten.
    void expect_answer(Port& receiver, Port& sender);
    void forget_question(Port& receiver); // the oldest

    // Sleeps until condition() holds; gives condition(). Returns also when the wait is
    // over, the caller has gone, the ports have been replaced, or stop() is called.
    template <class Condition>
    bool sleep(Lock& lock, std::condition_variable& wake, WaitOption wait,
               const Caller& caller, Condition condition);

    PortLimits limits; // of which max_wait may change, under the lock
    mutable std::mutex mutex;
    Recorder recorder;
    bool stopped = false;
    std::size_t asleep = 0;
    // Whoever waits at ports that are replaced keeps them until it has left.
    std::shared_ptr<PortTable> table;
};

} // namespace velmo::model

#endif
