// Refuses to run outside an emulated device: the cases write /etc, /proc,
// /storage and build interfaces, which must never reach the host.
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    bool listing = false;
    for (int i = 1; i < argc; i++)
        listing |= strcmp(argv[i], "--gtest_list_tests") == 0;
    const char *inside = getenv("VDEV");
    if (!listing && (!inside || strcmp(inside, "1") != 0 || access("/run/vdev/inside", F_OK) != 0)) {
        fprintf(stderr, "vesk_tests: run me inside the emulated device: emu/vdev -- %s\n", argv[0]);
        return 2;
    }
    return RUN_ALL_TESTS();
}
