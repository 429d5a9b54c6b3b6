#include "tests/durability/load_client.h"

#include <algorithm>
#include <iterator>

namespace velmo::tests {

namespace {

constexpr int points_of_a_client = 4;
constexpr int mode_plain = 30001;

std::string joined(const std::deque<int>& numbers)
{
    std::string text;
    for (const int number : numbers)
        text += std::to_string(number) + " ";
    return text;
}

} // namespace

Sent sent_in(const Velmo::DATA_BUFFER& data)
{
    const std::string both = text(data);
    const std::size_t colon = both.find(':');
    return {std::stoi(both.substr(0, colon)), std::stoi(both.substr(colon + 1))};
}

void create_shared(const Services& services)
{
    services.ports->create_port(shared::port_name, shared::port, 1u << 20);
    services.ports->declare_event(1, buffer("declared"), 1);
    services.ports->add_event(shared::event, 1);
}

LoadClient::LoadClient(int its_number)
    : number(its_number), random(static_cast<unsigned>(its_number))
{
}

std::string LoadClient::own(const std::string& what) const
{
    return "client " + std::to_string(number) + "/" + what;
}

CORBA::ULong LoadClient::handle(Kind kind) const
{
    return kind * 1000000 + static_cast<CORBA::ULong>(number) * 10000;
}

std::string LoadClient::Mail::text() const
{
    return "packets " + joined(packets) + "replies " + joined(replies) + "unanswered " +
           std::to_string(unanswered);
}

// ------------------------------------------------------------------ load

std::size_t LoadClient::run(const Services& services)
{
    answers = 0;
    try {
        for (;;) {
            step(services);
            ++answers;
        }
    } catch (const CORBA::SystemException&) {
        return answers;
    }
}

void LoadClient::change(const Registers::Values& values, const std::function<Call()>& call)
{
    registers.begin(values);
    const Call result = call();
    if (result == VL_OK)
        registers.done();
    else
        odd.push_back(values.begin()->first + ": result " + std::to_string(result));
}

void LoadClient::step(const Services& services)
{
    static constexpr void (LoadClient::*steps[])(const Services&) = {
        &LoadClient::set_point,      &LoadClient::set_point,
        &LoadClient::use_mail,       &LoadClient::use_mail,
        &LoadClient::use_mail,       &LoadClient::create_or_remove_point,
        &LoadClient::send_shared,    &LoadClient::send_shared,
        &LoadClient::describe_point, &LoadClient::create_set,
        &LoadClient::create_port,    &LoadClient::connect_or_disconnect,
        &LoadClient::receive_shared, &LoadClient::raise_own,
        &LoadClient::raise_shared,   &LoadClient::contend,
    };
    (this->*steps[any(static_cast<int>(std::size(steps)))])(services);
}

void LoadClient::set_point(const Services& services)
{
    const std::string name = own("point " + std::to_string(any(points_of_a_client)));
    if (registers.known(name) == Registers::absent)
        return create_or_remove_point(services);
    const std::string value = std::to_string(++last);
    change({{name, value}},
           [&] { return services.points->set_DTP(name.c_str(), buffer(value)); });
}

void LoadClient::create_or_remove_point(const Services& services)
{
    const std::string name = own("point " + std::to_string(any(points_of_a_client)));
    if (registers.known(name) == Registers::absent)
        change({{name, "new"}},
               [&] { return services.points->create_DTP(name.c_str(), "text"); });
    else
        change({{name, Registers::absent}},
               [&] { return services.points->remove_DTP(name.c_str()); });
}

void LoadClient::describe_point(const Services& services)
{
    const std::string name = own("described");
    if (registers.known(name) == Registers::absent)
        return change({{name, ""}},
                      [&] { return services.points->create_DTP(name.c_str(), "int32"); });
    const std::string description = std::to_string(++last);
    change({{name, description}}, [&] {
        return services.points->set_DTP_description(name.c_str(), description.c_str());
    });
}

void LoadClient::create_set(const Services& services)
{
    const std::string set = own("set " + std::to_string(++sets));
    change({{set + "/a", "new"}, {set + "/b", "new"}, {set + "/c", "new"}}, [&] {
        return services.points->create_set(set.c_str(), "text", buffer("a\nb\nc"));
    });
}

void LoadClient::create_port(const Services& services)
{
    const CORBA::ULong of_port = handle(others) + static_cast<CORBA::ULong>(++ports);
    const std::string name = own("port " + std::to_string(ports));
    change({{name, std::to_string(of_port)}},
           [&] { return services.ports->create_port(name.c_str(), of_port, 0); });
}

void LoadClient::connect_or_disconnect(const Services& services)
{
    const std::string from = own("line from");
    const std::string to = own("line to");
    for (const auto& [name, kind] : {std::pair{from, line_from}, {to, line_to}})
        if (registers.known(name) == Registers::absent)
            return change({{name, std::to_string(handle(kind))}}, [&] {
                return services.ports->create_port(name.c_str(), handle(kind), 0);
            });
    const std::string line = own("line");
    if (registers.known(line) == Registers::absent)
        change({{line, to}}, [&] {
            return services.ports->connect_port(from.c_str(), to.c_str(), mode_plain, 0,
                                                "");
        });
    else
        change({{line, Registers::absent}},
               [&] { return services.ports->disconnect_port(handle(line_from)); });
}

void LoadClient::change_mail(const Mail& after, const std::function<Call()>& call)
{
    change({{own("mail"), after.text()}}, call);
    mail = after;
}

void LoadClient::use_mail(const Services& services)
{
    const std::string from = own("mail from");
    const std::string to = own("mail to");
    for (const auto& [name, kind] : {std::pair{from, mail_from}, {to, mail_to}})
        if (registers.known(name) == Registers::absent)
            return change({{name, std::to_string(handle(kind))}}, [&] {
                return services.ports->create_port(name.c_str(), handle(kind), 0);
            });
    if (registers.known(own("mail")) == Registers::absent)
        return change_mail(Mail(), [&] {
            return services.ports->connect_port(from.c_str(), to.c_str(), mode_plain, 0,
                                                "");
        });
    Mail after = mail;
    Velmo::DATA_BUFFER_var data;
    switch (any(5)) {
    case 0:
        if (mail.packets.empty())
            break;
        after.packets.pop_front();
        ++after.unanswered;
        return change_mail(after, [&] {
            return services.ports->receive_packet(handle(mail_to), 0, data.out(), 0);
        });
    case 1:
        if (mail.unanswered == 0)
            break;
        --after.unanswered;
        after.replies.push_back(++last);
        return change_mail(after, [&] {
            return services.ports->reply_packet(handle(mail_to), data_of(last), 0);
        });
    case 2:
        if (mail.replies.empty())
            break;
        after.replies.pop_front();
        return change_mail(after, [&] {
            return services.ports->receive_reply(handle(mail_from), data.out(), 0);
        });
    case 3:
        after.packets.push_front(++last);
        return change_mail(after, [&] {
            return services.ports->send_packet_to_front(handle(mail_from), data_of(last),
                                                        0);
        });
    default:
        break;
    }
    after.packets.push_back(++last);
    change_mail(after, [&] {
        return services.ports->send_packet(handle(mail_from), data_of(last), 0);
    });
}

void LoadClient::send_shared(const Services& services)
{
    const Sent packet{number, ++last};
    packets.perhaps_sent.insert(packet);
    const Call result =
        services.ports->send_packet(shared::port, buffer(text_of(packet)), 0);
    packets.perhaps_sent.erase(packet);
    if (result == VL_OK)
        packets.sent.insert(packet);
    else
        odd.push_back("send_packet: result " + std::to_string(result));
}

void LoadClient::receive_shared(const Services& services)
{
    Velmo::DATA_BUFFER_var data;
    ++packets.perhaps_received;
    const Call result = services.ports->receive_packet(shared::port, 0, data.out(),
                                                       static_cast<CORBA::ULong>(any(3)));
    --packets.perhaps_received;
    if (result == VL_OK)
        packets.received.push_back(sent_in(data.in()));
    else if (result != EMPTY_QUEUE && result != TIME_OUT)
        odd.push_back("receive_packet: result " + std::to_string(result));
}

void LoadClient::raise_own(const Services& services)
{
    const std::string name = own("event");
    if (registers.known(name) == Registers::absent)
        return change({{name, "0 declared"}},
                      [&] { return services.ports->add_event(name.c_str(), 1); });
    if (any(10) == 0)
        return change({{name, "0 declared"}},
                      [&] { return services.ports->clear_event(name.c_str()); });
    const int count = std::stoi(registers.known(name)) + 1;
    const std::string data = std::to_string(++last);
    change({{name, std::to_string(count) + " " + data}},
           [&] { return services.ports->send_event(name.c_str(), buffer(data)); });
}

void LoadClient::raise_shared(const Services& services)
{
    ++raises.perhaps;
    const Call result = services.ports->send_event(shared::event, buffer("raised"));
    --raises.perhaps;
    if (result == VL_OK)
        ++raises.counted;
    else
        odd.push_back("send_event: result " + std::to_string(result));
}

void LoadClient::contend(const Services& services)
{
    const std::string name = "contender " + std::to_string(number);
    if (registers.known(name) != Registers::absent && any(3) == 0)
        change({{name, Registers::absent}}, [&] {
            return services.contention->out_contend(shared::group, name.c_str());
        });
    else
        change({{name, std::to_string(++last)}}, [&] {
            return services.contention->regist_contender(shared::group, name.c_str(),
                                                         buffer("data"), "role", last);
        });
    if (const auto seen = services.value("$SYS/contention/group/epoch"))
        epoch = std::max<std::uint64_t>(epoch, std::stoull(*seen));
}

} // namespace velmo::tests
