// The tools change the clock, the host name and /storage only on a device:
// the board itself, or an emulated one (emu/vdev marks it with
// /run/vdev/inside). Anywhere else the caller must say that the host is
// meant, with --host or VESK_HOST=1.
#pragma once

#include <stdlib.h>
#include <string.h>
#include <unistd.h>

namespace vesk_tool {

inline bool on_device()
{
    if (access("/run/vdev/inside", F_OK) == 0)
        return true;
#ifdef VESK_TOOLS_FOR_BOARD
    // The board has no /run/vdev: a board build acts on the device it runs
    // on, except where an emulated device's /run/vdev lacks its mark.
    return access("/run/vdev", F_OK) != 0;
#else
    return false;
#endif
}

// True when changes may go ahead: on a device, or the host is meant.
inline bool may_change(bool host_flag)
{
    const char *env = getenv("VESK_HOST");
    return on_device() || host_flag || (env && !strcmp(env, "1"));
}

} // namespace vesk_tool
