#include <gtest/gtest.h>

#include <array>

#include "fake_sleep.hpp"
#include "quil.h"
#include "vdev.hpp"
#include "vesk_core.h"

namespace {

int calls_until_true; // the condition turns true on this call (0: never)
int cond_calls;
int counting_cond() { return ++cond_calls == calls_until_true; }

TEST(Wait, ConditionIsPolledWithinItsBound)
{
    // true_on_call 0: never true; -1: null condition. tests: how often it is asked.
    const struct { int true_on_call, ticks, result, tests, sleeps; } funp[] = {
        {1, 5, 1, 1, 0}, {3, 5, 1, 3, 2}, {6, 5, 1, 6, 5}, {0, 5, 0, 6, 6}, {0, 0, 0, 11, 11},
        {-1, 1, 0, 0, 2}, // a null condition sleeps it all
    };
    for (const auto &c : funp) {
        SCOPED_TRACE(testing::Message() << c.true_on_call << " " << c.ticks);
        fake_sleep::reset();
        cond_calls = 0;
        calls_until_true = c.true_on_call;
        EXPECT_EQ(vesk_wait_until_funp(c.true_on_call < 0 ? nullptr : counting_cond, c.ticks), c.result);
        EXPECT_EQ(cond_calls, c.tests);
        EXPECT_EQ(fake_sleep::calls, static_cast<unsigned>(c.sleeps));
        EXPECT_EQ(fake_sleep::slept_us, 100000ULL * c.sleeps);
    }
    for (auto [cond, ticks, result, sleeps] : {std::array{7, 3, 1, 0}, {0, 0, 0, 11}, {0, 2, 0, 3}}) {
        fake_sleep::reset();
        EXPECT_EQ(vesk_wait_until(cond, ticks), result) << cond << " " << ticks;
        EXPECT_EQ(fake_sleep::calls, static_cast<unsigned>(sleeps)) << cond << " " << ticks;
    }
}

TEST(DeviceState, ScheduleEnable)
{
    EXPECT_EQ(vesk_util_get_sch_en(), 0); // absent key
    for (int v : {1, 0, -1}) {
        ASSERT_EQ(quil_set_value(&v, "schedule_en"), 0);
        EXPECT_EQ(vesk_util_get_sch_en(), v != 0) << v;
    }
}

TEST(Led, OnlyBootUpZeroRunsTheTool)
{
    vesk_led_fw_upgrade(1), vesk_led_save_conf(), vesk_led_schedule(), vesk_led_get_wan_ip();
    vesk_led_boot_up(1), vesk_led_boot_up(-1);
    EXPECT_TRUE(vdev::commands().empty());
    vesk_led_boot_up(0);
    EXPECT_EQ(vdev::commands(), std::vector<std::string>{"led_ctl diag off"});
}

TEST(Assert, PrintsExpressionAndExits)
{
    auto o = vdev::in_child([] {
        int *ptr = nullptr;
        VESK_ASSERT(ptr!=0);
    });
    EXPECT_EQ(o.status, 1);
    EXPECT_EQ(o.out.rfind("VESK_ASSERT FAILED 'ptr!=0' operator() core_test.cpp:", 0), 0u) << o.out;
}

} // namespace
