// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MBackgroundWorker.h"
#include "core/MFailureQueue.h"
#include "core/MFailureReporter.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/LockWaitCounter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

TEST(MFailureReporter, WritesOrCountsWhatManyThreadsReportAtOnceAndChargesNoneOfThem) {
    constexpr int kThreads = 4, kReports = 5000;
    std::atomic<int> threadsThatPaid{0};
    testing::internal::CaptureStderr();
    std::string euros;
    for (int i = 0; i < 200; ++i) euros += "\xE2\x82\xAC";
    MFailureReporter::Report("abcde" + euros);  // there is room for 158 of them and a byte
    {
        const auto worker = MBackgroundWorker::Acquire();
        std::vector<std::thread> threads(kThreads);
        for (std::thread& thread : threads) {
            thread = std::thread([&] {
                const AllocationCounter allocations;
                const LockWaitCounter waits;
                for (int i = 0; i < kReports; ++i) MFailureReporter::ReportSystemException("Run");
                if (allocations.Count() + waits.Count() > 0) ++threadsThatPaid;
            });
        }
        for (std::thread& thread : threads) thread.join();
    }
    EXPECT_EQ(threadsThatPaid, 0);
    std::istringstream lines(testing::internal::GetCapturedStderr());
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "Kestrune: abcde" + euros.substr(0, 474));
    int written = 0, lost = 0;
    while (std::getline(lines, line)) {
        if (line == "Kestrune: SYSTEM EXCEPTION! Run") {
            ++written;
        } else {
            lost += std::stoi(line.substr(std::string("Kestrune: ").size()));
        }
    }
    EXPECT_EQ(written + lost, kThreads * kReports);
    EXPECT_GE(written, MFailureQueue::kRecords - 1) << "the first line has a place as well";
}
