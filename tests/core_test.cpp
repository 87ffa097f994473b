#include <gtest/gtest.h>
#include <sys/stat.h>

#include "fake_sleep.hpp"
#include "quil.h"
#include "vdev.hpp"
#include "vesk_core.h"

namespace {

int calls_until_true; // the condition turns true on this call (0: never)
int cond_calls;
int counting_cond() { return ++cond_calls == calls_until_true; }

TEST(Wait, FunctionConditionIsPolledWithinItsBound)
{
    const struct {
        const char *name;
        int true_on_call; // 0: never true; -1: null condition
        int ticks, result;
        int tests;  // how often the condition is asked
        int sleeps; // how many 100 ms ticks are slept
    } cases[] = {
        {"true at once", 1, 5, 1, 1, 0},   {"true on third test", 3, 5, 1, 3, 2},
        {"true on last test", 6, 5, 1, 6, 5}, {"never true", 0, 5, 0, 6, 6},
        {"default ticks", 0, 0, 0, 11, 11}, {"negative ticks take default", 0, -5, 0, 11, 11},
        {"null condition sleeps it all", -1, 1, 0, 0, 2},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        fake_sleep::reset();
        cond_calls = 0;
        calls_until_true = c.true_on_call;
        EXPECT_EQ(vesk_wait_until_funp(c.true_on_call < 0 ? nullptr : counting_cond, c.ticks), c.result);
        EXPECT_EQ(cond_calls, c.tests);
        EXPECT_EQ(fake_sleep::calls, static_cast<unsigned>(c.sleeps));
        EXPECT_EQ(fake_sleep::slept_us, 100000ULL * c.sleeps);
    }
}

TEST(Wait, ValueConditionSleepsOnlyWhenFalse)
{
    const struct {
        int cond, ticks, result, sleeps;
    } cases[] = {{1, 0, 1, 0}, {7, 3, 1, 0}, {0, 0, 0, 11}, {0, -5, 0, 11}, {0, 2, 0, 3}};
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << "cond " << c.cond << " ticks " << c.ticks);
        fake_sleep::reset();
        EXPECT_EQ(vesk_wait_until(c.cond, c.ticks), c.result);
        EXPECT_EQ(fake_sleep::calls, static_cast<unsigned>(c.sleeps));
    }
}

TEST(DeviceState, UsbootMarkerAndScheduleEnable)
{
    EXPECT_EQ(vesk_get_usboot(), 0);
    vdev::put("/mnt/usboot", ""); // any kind of file marks it
    EXPECT_EQ(vesk_get_usboot(), 1);
    vdev::remove("/mnt/usboot");
    ASSERT_EQ(mkdir("/mnt/usboot", 0755), 0);
    EXPECT_EQ(vesk_get_usboot(), 1);

    EXPECT_EQ(vesk_util_get_sch_en(), 0); // absent key
    for (int v : {1, 0, 5, -1}) {
        ASSERT_EQ(quil_set_value(&v, "schedule_en"), 0);
        EXPECT_EQ(vesk_util_get_sch_en(), v != 0) << v;
    }
}

TEST(Led, OnlyBootUpZeroRunsTheTool)
{
    vesk_led_fw_upgrade(1);
    vesk_led_save_conf();
    vesk_led_schedule();
    vesk_led_get_wan_ip();
    vesk_led_boot_up(1);
    vesk_led_boot_up(-1);
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
