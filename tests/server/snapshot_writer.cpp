// Saves one snapshot after the other, until it is killed: FOLDER FIRST-NUMBER. Tells the
// number of each that is complete.
#include <cstdio>
#include <cstdlib>

#include "tests/server/numbered_points.h"

int main(int argc, char** argv)
{
    if (argc != 3)
        return EXIT_FAILURE;
    velmo::store::SnapshotStore snapshots(argv[1], "S");
    for (int number = std::atoi(argv[2]);; ++number) {
        velmo::tests::save_numbered(snapshots, number);
        std::printf("%d\n", number);
        std::fflush(stdout);
    }
}
