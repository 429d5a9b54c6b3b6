// Ports, their connections, packets and replies.
#ifndef VELMO_CPP_PORTS_HPP
#define VELMO_CPP_PORTS_HPP

#include <climits>
#include <cstdint>

#include "server.hpp"

namespace velmo {

/** How two ports are connected. */
enum class Mode : unsigned int {
    plain = 30001,
    exclusive = 30002, ///< neither port has another connection
    registered = 30004 ///< plain, and this host's name is registered with the first port
};

/** How a port with several receivers delivers. */
enum class Delivery : unsigned int {
    in_turn = 0, ///< each packet goes to one of them
    copies = 1   ///< each of them gets its own copy; as with a new port
};

/** The ports of a server and realm. A port is named where it is created and connected; the
 * functions on packets take its handle. */
class Ports : public detail::ServerUser {
public:
    explicit Ports(Server server = {}) noexcept : ServerUser(std::move(server)) {}

    // ------------------------------------------------------------ ports

    /** Creates a port; it stays when the process ends. vl_create_port().
     *
     * @param port      its name
     * @param handle    any number but 0
     * @param capacity  packets that its queue holds, 0 for the server's default
     */
    Result<> create(Name port, unsigned int handle, unsigned int capacity = 0) const
    {
        return ::vl_create_port(port.c_str(), handle, capacity, name(), realm());
    }

    /** Packets sent on the first then go to the second. vl_connect_port(). */
    Result<> connect(Name from, Name to, Mode mode = Mode::plain) const
    {
        return ::vl_connect_port(from.c_str(), to.c_str(), static_cast<unsigned int>(mode),
                                 0, "", name(), realm());
    }

    /** Ends every connection of a port. vl_disconenct_port(). */
    Result<> disconnect(unsigned int port) const
    {
        return ::vl_disconenct_port(port, name(), realm());
    }

    /** All connections. vl_get_connection_info(). After a failure for want of memory, those
     * that were copied. */
    Result<Connections> connections() const
    {
        ConnectionList list{};
        const int code = ::vl_get_connection_info(&list, name(), realm());
        return {code, Connections(list)};
    }

    /** The ports that have connections: those that send, then those that receive.
     * vl_com_chennal_seq(). */
    Result<Names> connected() const
    {
        return detail::names_from(
            [&](NameList* list) { return ::vl_com_chennal_seq(list, name(), realm()); });
    }

    /** Chooses how a port with several receivers delivers. enableCopy(). */
    Result<> deliver(Name port, Delivery delivery) const
    {
        return ::enableCopy(port.c_str(), static_cast<unsigned int>(delivery), name(),
                            realm());
    }

    // ---------------------------------------------------------- packets

    /** Sends a packet to every port connected from this one, or into its own queue.
     * vl_send_packet().
     *
     * @param wait  for room
     */
    Result<> send(unsigned int port, Bytes packet, Wait wait = {}) const
    {
        return ::vl_send_packet(port, packet.data(), packet.length(), wait.option(), name(),
                                realm());
    }

    /** The same, to the head of the queue. vl_send_packet_to_front(). */
    Result<> send_to_front(unsigned int port, Bytes packet, Wait wait = {}) const
    {
        return ::vl_send_packet_to_front(port, packet.data(), packet.length(),
                                         wait.option(), name(), realm());
    }

    /** Takes the oldest packet of a port. vl_receive_packetv().
     *
     * @param wait  for a packet
     * @param from  the handle of the only sender wanted, 0 for any
     */
    Result<Block> receive(unsigned int port, Wait wait = {}, unsigned int from = 0) const
    {
        return detail::block_from([&](void** data, unsigned int* length) {
            return ::vl_receive_packetv(port, pointer(from), data, length, wait.option(),
                                        name(), realm());
        });
    }

    /** Takes the oldest packet of a port into a buffer of exactly its length; a packet of
     * another length is lost. vl_receive_packet(). */
    Result<> receive_into(unsigned int port, Buffer buffer, Wait wait = {},
                          unsigned int from = 0) const
    {
        return ::vl_receive_packet(port, pointer(from), room(buffer), size(buffer),
                                   wait.option(), name(), realm());
    }

    // ---------------------------------------------------------- replies

    /** Answers the oldest packet that was received on this port and not answered yet.
     * vl_reply_packet().
     *
     * @param port  the handle of the port that received the packet
     * @param wait  for room
     */
    Result<> reply(unsigned int port, Bytes answer, Wait wait = {}) const
    {
        return ::vl_reply_packet(port, answer.data(), answer.length(), wait.option(),
                                 name(), realm());
    }

    /** Takes the oldest reply to the packets sent on this port. vl_receive_reply2().
     *
     * @param port  the handle of the port that sent the packets
     * @param wait  for a reply
     */
    Result<Block> receive_reply(unsigned int port, Wait wait = {}) const
    {
        return detail::block_from([&](void** data, unsigned int* length) {
            return ::vl_receive_reply2(port, data, length, wait.option(), name(), realm());
        });
    }

    /** Takes the oldest reply into a buffer of exactly its length; one of another length is
     * lost. vl_receive_reply(). */
    Result<> receive_reply_into(unsigned int port, Buffer buffer, Wait wait = {}) const
    {
        return ::vl_receive_reply(port, room(buffer), size(buffer), wait.option(), name(),
                                  realm());
    }

private:
    static void* pointer(std::uintptr_t handle) noexcept
    {
        return reinterpret_cast<void*>(handle);
    }

    // What is too large for an unsigned int is refused, like no buffer.
    static bool fits(Buffer buffer) noexcept { return buffer.size() <= UINT_MAX; }
    static void* room(Buffer buffer) noexcept
    {
        return fits(buffer) ? buffer.data() : nullptr;
    }
    static unsigned int size(Buffer buffer) noexcept
    {
        return fits(buffer) ? static_cast<unsigned int>(buffer.size()) : UINT_MAX;
    }
};

} // namespace velmo

#endif
