// The groups of commands, each in a file of its name.
#ifndef VELMO_CLI_GROUPS_H
#define VELMO_CLI_GROUPS_H

#include "cli/command.h"

namespace velmo::cli {

// In the order in which help shows them.
void add_groups(Program& program);

void add_server_group(Program& program);
void add_settings_group(Program& program);
void add_point_group(Program& program);
void add_point_values(Group& point); // point get, set
void add_point_watch(Group& point);
void add_point_transfer(Group& point); // point export, import
void add_port_group(Program& program);
void add_port_packets(Group& port); // port send, receive, reply, call
void add_event_group(Program& program);
void add_snapshot_group(Program& program);
void add_contend_group(Program& program);
void add_contend_run(Group& contend); // contend run
void add_error_group(Program& program);
void add_bench_command(Program& program);
void add_shell_command(Program& program);
void add_hidden_commands(Program& program); // complete, completion, man

} // namespace velmo::cli

#endif
