// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "core/MMutex.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

TEST(MMutex, FailsToLockInTimeAndReleasesOnlyWhatItHolds) {
    MMutex mutex;
    const auto triesElsewhere = [&](bool expected, const char* what) {
        std::thread([&] {
            EXPECT_EQ(static_cast<bool>(MTryLock(mutex)), expected) << what;
        }).join();
    };
    {
        const MLock held(mutex);
        std::thread([&] {
            EXPECT_THROW(MLock(mutex, std::chrono::milliseconds(5)), MException);
        }).join();
        triesElsewhere(false, "held");
        triesElsewhere(false, "a failed try has released the lock");
    }
    triesElsewhere(true, "free");
    triesElsewhere(true, "a successful try has kept the lock");
}
