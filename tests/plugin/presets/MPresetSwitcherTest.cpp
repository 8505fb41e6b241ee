// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "plugin/presets/MPresetSwitcher.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/LockWaitCounter.h"
#include "tests/support/Reports.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>
#include <vector>

TEST(MPresetSwitcher, MakesEveryStepOnceWithoutDelayingWhoAsks) {
    constexpr int kThreads = 4, kSteps = 2000;
    const Reports reports;
    std::atomic<int> sum{0}, threadsThatPaid{0};
    {
        MPresetSwitcher switcher, neighbour;
        switcher.PostStep(7);  // before there is a worker
        switcher.SetStep([&](int steps) {
            sum += steps;
            throw MException("a step that fails is reported");
        });
        neighbour.SetStep([&](int steps) { sum += steps; });
        switcher.Start();
        neighbour.Start();
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i) {
            threads.emplace_back([&] {
                const AllocationCounter allocations;
                const LockWaitCounter waits;
                for (int step = 0; step < kSteps; ++step) {
                    switcher.PostStep(2);
                    neighbour.PostStep(-1);
                }
                if (allocations.Count() + waits.Count() > 0) ++threadsThatPaid;
            });
        }
        for (std::thread& thread : threads) thread.join();
        while (sum != kThreads * kSteps + 7) std::this_thread::yield();
    }
    EXPECT_EQ(threadsThatPaid, 0);
    EXPECT_FALSE(reports.texts.empty());
}

TEST(MPresetSwitcher, WaitsForTheStepInHandWhenItGoes) {
    for (int i = 0; i < 200; ++i) {  // each time the worker starts and ends
        std::atomic<bool> isAtWork{false};
        {
            MPresetSwitcher switcher;
            switcher.SetStep([&](int) {
                isAtWork = true;
                std::this_thread::yield();
                isAtWork = false;
            });
            switcher.Start();
            switcher.PostStep(1);
            if (i % 2 == 0) std::this_thread::yield();
        }
        ASSERT_FALSE(isAtWork);
    }
}

TEST(MPresetSwitcher, StepsOnFromThePlaceThatWasAskedForLast) {
    int place = -1;
    std::promise<int> steps;
    MPresetSwitcher switcher;
    switcher.SetChoice([&](int chosen) { place = chosen; });
    switcher.SetStep([&](int posted) { steps.set_value(posted); });
    switcher.PostStep(-5);
    switcher.PostPlace(9);
    switcher.PostStep(-2);
    switcher.Start();
    EXPECT_EQ(steps.get_future().get(), -2);
    EXPECT_EQ(place, 9);
}
