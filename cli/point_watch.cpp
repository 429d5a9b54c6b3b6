// velmo point watch.
#include "cli/groups.h"
#include "cli/interruption.h"
#include "cli/points.h"

namespace velmo::cli {

namespace {

struct Watch {
    void declare(CLI::App& app)
    {
        app.add_option("POINT", names, "Names of the points")->required();
        app.add_option("--interval", interval_ms, "Milliseconds between two looks")
            ->capture_default_str()
            ->check(CLI::Range(1, 86400000))
            ->type_name("MS");
        app.add_option("--count", count, "Ends after so many lines (never)")
            ->check(CLI::PositiveNumber.description(""))
            ->type_name("N");
    }

    void run(Session& session) const
    {
        const Interruption interruption;
        std::vector<std::optional<Point>> known(names.size());
        for (std::size_t shown = 0;;) {
            for (std::size_t i = 0; i < names.size(); ++i) {
                Point now = read_point(session, names[i]);
                if (known[i] && known[i]->value == now.value)
                    continue;
                show(session, names[i], now);
                known[i] = std::move(now);
                if (++shown == count)
                    return;
            }
            interruption.wait(std::chrono::milliseconds(interval_ms));
        }
    }

private:
    static void show(Session& session, const std::string& name, const Point& point)
    {
        const Kind kind = kind_of(point);
        session.out.item(
            {{"point", json_text(name)}, {"value", value_json(point, kind)}},
            session.out.style(harmless(name), Style::bold) + "\t" +
                (point.value ? harmless(format(kind, *point.value)) : "(no data)"));
    }

    std::vector<std::string> names;
    int interval_ms = 200;
    std::size_t count = 0;
};

} // namespace

void add_point_watch(Group& point)
{
    point.verb<Watch>("watch", "Shows points and every change of theirs until interrupted");
}

} // namespace velmo::cli
