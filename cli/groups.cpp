#include "cli/groups.h"

namespace velmo::cli {

void add_groups(Program& program)
{
    add_server_group(program);
    add_settings_group(program);
    add_point_group(program);
    add_port_group(program);
    add_event_group(program);
    add_contend_group(program);
    add_snapshot_group(program);
    add_error_group(program);
    add_bench_command(program);
    add_shell_command(program);
    add_hidden_commands(program);
}

} // namespace velmo::cli
