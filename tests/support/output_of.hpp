// What a call prints, for cases that compare messages byte for byte.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

template <typename F> std::string stdout_of(F &&f)
{
    fflush(stdout);
    testing::internal::CaptureStdout();
    f();
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

template <typename F> std::string stderr_of(F &&f)
{
    testing::internal::CaptureStderr();
    f();
    return testing::internal::GetCapturedStderr();
}
