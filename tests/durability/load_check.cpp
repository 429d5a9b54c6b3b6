// What a LoadClient finds when the server is there again.
#include "tests/durability/load_client.h"

namespace velmo::tests {

namespace {

template <class Receive>
std::deque<int> all_of(Receive receive)
{
    std::deque<int> numbers;
    Velmo::DATA_BUFFER_var data;
    while (receive(data) == VL_OK)
        numbers.push_back(std::stoi(text(data.in())));
    return numbers;
}

} // namespace

Registers::Values LoadClient::find(const Services& services) const
{
    Registers::Values found;
    const auto put = [&found](const std::string& name,
                              const std::optional<std::string>& value) {
        if (value)
            found[name] = *value;
    };
    Velmo::NAME_SEQ_var names;
    services.points->get_all_point_name(names.out());
    for (CORBA::ULong i = 0; i < names->length(); ++i) {
        const std::string name = names[i].in();
        if (name.rfind(own(""), 0) == 0)
            found[name] = services.value(name).value_or("new");
    }
    const std::string described = own("described");
    if (found.count(described) != 0)
        found[described] =
            CORBA::String_var(services.points->get_DTP_description(described.c_str())).in();

    std::vector<std::string> of_ports{own("mail from"), own("mail to"), own("line from"),
                                      own("line to")};
    for (int i = 1; i <= ports; ++i)
        of_ports.push_back(own("port " + std::to_string(i)));
    for (const std::string& name : of_ports)
        put(name, services.value("$SYS/ports/" + name + "/handle"));

    Velmo::DT_PORT_SVC::CONNECTION_SEQ_var connections;
    services.ports->get_connection_info(connections.out());
    for (CORBA::ULong i = 0; i < connections->length(); ++i) {
        if (connections[i].from_name.in() == own("line from"))
            found[own("line")] = connections[i].to_name.in();
        if (connections[i].from_name.in() == own("mail from"))
            found[own("mail")] = drain_mail(services).text();
    }
    const std::string event = "$SYS/events/" + own("event") + "/";
    if (const auto count = services.value(event + "count"))
        put(own("event"), *count + " " + services.value(event + "data").value_or(""));
    const std::string contender = "contender " + std::to_string(number);
    put(contender,
        services.value("$SYS/contention/group/contenders/" + contender + "/priority"));
    return found;
}

LoadClient::Mail LoadClient::drain_mail(const Services& services) const
{
    const auto receive_replies = [&] {
        return all_of([&](Velmo::DATA_BUFFER_var& data) {
            return services.ports->receive_reply(handle(mail_from), data.out(), 0);
        });
    };
    const auto answer_all = [&] {
        int answered = 0;
        while (services.ports->reply_packet(handle(mail_to), data_of(0), 0) == VL_OK)
            ++answered;
        return answered;
    };
    Mail found;
    found.replies = receive_replies();
    found.unanswered = answer_all();
    found.packets = all_of([&](Velmo::DATA_BUFFER_var& data) {
        return services.ports->receive_packet(handle(mail_to), 0, data.out(), 0);
    });
    answer_all();
    receive_replies();
    return found;
}

void LoadClient::check(const Services& services, Violations& violations)
{
    registers.check(find(services), violations);
    if (registers.known(own("mail")) != Registers::absent) { // empty by now
        mail = Mail();
        registers.begin({{own("mail"), mail.text()}});
        registers.done();
    }
}

} // namespace velmo::tests
