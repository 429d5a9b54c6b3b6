// What PortService does with packets and replies.
#include <algorithm>
#include <utility>

#include "server/model/changing_ports.h"

namespace velmo::model {

class PortService::Send final : public Write {
public:
    Send(PortService& its_service, Port& sending_port, const Data& data, End where)
        : service(its_service), sender(sending_port), packet{data, &sender}, end(where)
    {
    }

    std::optional<vl_result> attempt() override
    {
        return sender.copies ? give_to_all() : give_to_next();
    }

private:
    std::optional<vl_result> give_to_all()
    {
        for (std::size_t i = 0; i < sender.receivers(); ++i)
            if (!sender.receiver(i).packets.accepts(packet))
                obstacles.push_back(&sender.receiver(i).packets);
        if (!obstacles.empty())
            return std::nullopt;
        for (std::size_t i = 0; i < sender.receivers(); ++i)
            give(sender.receiver(i));
        return VL_OK;
    }

    std::optional<vl_result> give_to_next()
    {
        const std::size_t count = sender.receivers();
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t chosen = (sender.turn + i) % count;
            Port& receiver = sender.receiver(chosen);
            if (receiver.packets.accepts(packet)) {
                obstacles.clear();
                give(receiver);
                const std::size_t next = (chosen + 1) % count;
                if (std::exchange(sender.turn, next) != next)
                    service.record(sender);
                return VL_OK;
            }
            obstacles.push_back(&receiver.packets);
        }
        return std::nullopt;
    }

    void give(Port& receiver)
    {
        const Packet* queued = receiver.packets.put(packet, end);
        ++sender.awaited;
        if (queued)
            service.record(receiver, Queue::packets, *queued);
        else
            service.expect_answer(receiver, sender);
    }

    PortService& service;
    Port& sender;
    const Packet packet;
    const End end;
};

vl_result PortService::check_size(const Data& data) const
{
    return data->size() > std::min(limits.packet_bytes, limits.queue_bytes)
               ? SIZE_IS_NOT_MATCH
               : VL_OK;
}

vl_result PortService::send(Handle handle, const Data& data, WaitOption wait,
                            const Caller& caller, End end)
{
    Changing lock(*this);
    Port* port = table->find(handle);
    if (!port)
        return INVAILD_PORT_HANDLE;
    if (const vl_result result = check_size(data); result != VL_OK)
        return result;
    Send write(*this, *port, data, end);
    return complete(lock, write, wait, caller);
}

vl_result PortService::send_packet(Handle handle, const Data& data, WaitOption wait,
                                   const Caller& caller)
{
    return send(handle, data, wait, caller, End::back);
}

vl_result PortService::send_packet_to_front(Handle handle, const Data& data,
                                            WaitOption wait, const Caller& caller)
{
    return send(handle, data, wait, caller, End::front);
}

vl_result PortService::receive_packet(Handle handle, std::uint64_t from, Data& data,
                                      WaitOption wait, const Caller& caller)
{
    Changing lock(*this);
    Port* port = table->find(handle);
    if (!port)
        return INVAILD_PORT_HANDLE;
    Receiver receiver(caller, from);
    if (std::optional<Packet> packet = port->packets.take(receiver)) {
        record_removal(*port, Queue::packets, *packet);
        expect_answer(*port, *packet->sender);
        port->packets.retry_writes();
        data = std::move(packet->data);
        return VL_OK;
    }
    if (!await(lock, port->packets, receiver, wait))
        return wait == no_wait ? EMPTY_QUEUE : TIME_OUT;
    data = std::move(receiver.packet->data);
    return VL_OK;
}

class PortService::Reply final : public Write {
public:
    Reply(PortService& its_service, Port& answering_port, const Data& data)
        : service(its_service), answerer(answering_port), packet{data, &answerer}
    {
    }

    std::optional<vl_result> attempt() override
    {
        if (answerer.unanswered.empty())
            return NON_EXIST_DATA;
        Port& asker = *answerer.unanswered.front();
        if (!asker.replies.accepts(packet)) {
            obstacles.push_back(&asker.replies);
            return std::nullopt;
        }
        if (const Packet* queued = asker.replies.put(packet, End::back))
            service.record(asker, Queue::replies, *queued);
        service.forget_question(answerer);
        return VL_OK;
    }

private:
    PortService& service;
    Port& answerer;
    const Packet packet;
};

vl_result PortService::reply_packet(Handle handle, const Data& data, WaitOption wait,
                                    const Caller& caller)
{
    Changing lock(*this);
    Port* port = table->find(handle);
    if (!port)
        return INVAILD_PORT_HANDLE;
    if (const vl_result result = check_size(data); result != VL_OK)
        return result;
    Reply write(*this, *port, data);
    return complete(lock, write, wait, caller);
}

vl_result PortService::receive_reply(Handle handle, Data& data, WaitOption wait,
                                     const Caller& caller)
{
    Changing lock(*this);
    Port* port = table->find(handle);
    if (!port)
        return INVAILD_PORT_HANDLE;
    Receiver receiver(caller, 0);
    if (std::optional<Packet> packet = port->replies.take(receiver)) {
        record_removal(*port, Queue::replies, *packet);
        port->replies.retry_writes();
        data = std::move(packet->data);
        return VL_OK;
    }
    if (!await(lock, port->replies, receiver, wait)) {
        if (wait != no_wait)
            return REPLAY_TIMEOUT;
        return port->awaited == 0 ? NON_EXIST_DATA : EMPTY_QUEUE;
    }
    data = std::move(receiver.packet->data);
    return VL_OK;
}

} // namespace velmo::model
