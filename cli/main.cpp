// velmo, the command line tool.
#include "cli/command.h"
#include "cli/interruption.h"

int main(int argc, char** argv)
{
    velmo::cli::end_when_interrupted();
    return velmo::cli::run({argv + (argc > 0 ? 1 : 0), argv + argc});
}
