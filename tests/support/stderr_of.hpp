// What a piece of a test printed on stderr, for checking messages byte for byte.
#pragma once

#include <gtest/gtest.h>

#include <string>

template <class F> std::string stderr_of(F &&f)
{
    testing::internal::CaptureStderr();
    f();
    return testing::internal::GetCapturedStderr();
}
