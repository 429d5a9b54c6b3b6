// What PortService tells its journal.
#include "server/model/port_service.h"

namespace velmo::model {

void PortService::record(const Port& port)
{
    if (recorder.on())
        recorder.add(PortChanged{port.handle, port.name,
                                 static_cast<std::uint32_t>(port.capacity), port.host,
                                 port.copies, port.turn});
}

void PortService::record(const Port& port, Queue queue, const Packet& packet)
{
    if (recorder.on())
        recorder.add(
            Queued{port.handle, queue, packet.number, packet.sender->handle, packet.data});
}

void PortService::record_removal(const Port& port, Queue queue, const Packet& packet)
{
    if (recorder.on())
        recorder.add(Dequeued{port.handle, queue, packet.number});
}

void PortService::expect_answer(Port& receiver, Port& sender)
{
    if (receiver.unanswered.size() >= receiver.capacity)
        forget_question(receiver);
    const auto before = static_cast<std::int64_t>(receiver.unanswered.size());
    receiver.unanswered.push_back(&sender);
    if (recorder.on())
        recorder.add(Queued{receiver.handle, Queue::unanswered,
                            receiver.questions_before + before, sender.handle, nullptr});
}

void PortService::forget_question(Port& receiver)
{
    if (recorder.on())
        recorder.add(
            Dequeued{receiver.handle, Queue::unanswered, receiver.questions_before});
    --receiver.unanswered.front()->awaited;
    receiver.unanswered.pop_front();
    ++receiver.questions_before;
}

void PortService::record_all()
{
    if (!recorder.on())
        return;
    recorder.add(AllPortsRemoved());
    const PortsImage all = table->image();
    for (const PortImage& port : all.ports) {
        recorder.add(PortChanged{port.handle, port.name, port.capacity, port.host,
                                 port.copies, port.turn});
        for (const PacketImage& packet : port.packets)
            recorder.add(Queued{port.handle, Queue::packets, packet.number, packet.sender,
                                packet.data});
        for (const PacketImage& reply : port.replies)
            recorder.add(Queued{port.handle, Queue::replies, reply.number, reply.sender,
                                reply.data});
        std::int64_t number = port.questions_before;
        for (const Handle sender : port.unanswered)
            recorder.add(Queued{port.handle, Queue::unanswered, number++, sender, nullptr});
    }
    for (const ConnectionImage& connection : all.connections)
        recorder.add(connection);
}

} // namespace velmo::model
