// Small helpers shared by the network families' tests.
#pragma once

#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/resource.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "output_of.hpp"
#include "vdev.hpp"

// The interface's MAC address as the kernel shows it in /sys.
inline std::vector<unsigned char> sys_mac(const char *ifname)
{
    unsigned int b[6];
    std::string text = vdev::read(std::string("/sys/class/net/") + ifname + "/address");
    EXPECT_EQ(sscanf(text.c_str(), "%x:%x:%x:%x:%x:%x", &b[0], &b[1], &b[2], &b[3], &b[4], &b[5]), 6);
    return {b, b + 6};
}

// Runs fn in a child process that cannot open any descriptor; the child
// exits 0 when fn returns true.
template <typename F> vdev::outcome without_descriptors(F fn)
{
    return vdev::in_child([&] {
        const rlimit none{0, 0};
        setrlimit(RLIMIT_NOFILE, &none);
        _exit(fn() ? 0 : 1);
    });
}
