// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MBackgroundWorker.h"
#include "core/MFailureQueue.h"
#include "core/MFailureReporter.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/LockWaitCounter.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <sstream>
#include <thread>
#include <utility>
#include <vector>

TEST(MFailureReporter, WritesWhatManyThreadsReportAtOnceAndChargesNoneOfThem) {
    constexpr int kThreads = 4, kReports = 5000;
    std::atomic<int> threadsThatPaid{0};
    testing::internal::CaptureStderr();
    for (int round = 0; round < 2; ++round) {
        const auto worker = MBackgroundWorker::Acquire();
        std::vector<std::thread> threads;
        threads.reserve(kThreads);
        for (int i = 0; i < kThreads; ++i) {
            threads.emplace_back([i, round, &threadsThatPaid] {
                std::array<char, 6> text{static_cast<char>('A' + i)};
                const AllocationCounter allocations;
                const LockWaitCounter waits;
                for (int report = 0; report < kReports; ++report) {
                    for (int j = 5, rest = round * kReports + report; j > 0; --j, rest /= 10) {
                        text[j] = static_cast<char>('0' + rest % 10);
                    }
                    MFailureReporter::Report({text.data(), text.size()});
                }
                if (allocations.Count() + waits.Count() > 0) ++threadsThatPaid;
            });
        }
        for (std::thread& thread : threads) thread.join();
    }
    EXPECT_EQ(threadsThatPaid, 0);
    std::istringstream lines(testing::internal::GetCapturedStderr());
    std::array<int, 4> last{-1, -1, -1, -1};
    int written = 0, lost = 0;
    std::string name, first, rest;
    while (lines >> name >> first && std::getline(lines, rest)) {
        ASSERT_EQ(name, "Kestrune:");
        if (rest.empty()) {
            const int number = std::stoi(first.substr(1));
            int& before = last.at(static_cast<std::size_t>(first[0] - 'A'));
            ASSERT_LT(std::exchange(before, number), number);
            ++written;
        } else {
            ASSERT_EQ(rest, " more failures came too fast to be kept.");
            lost += std::stoi(first);
        }
    }
    EXPECT_EQ(written + lost, 2 * kThreads * kReports);
    EXPECT_GE(written, 2 * MFailureQueue::kRecords) << "what was queued when each worker ended";
}

TEST(MFailureQueue, CutsLongTextsBetweenCharacters) {
    MFailureQueue queue;
    const std::string_view head = "abcde";  // leaves room for 158 euro signs and a byte
    std::string euros;
    for (int i = 0; i < 200; ++i) euros += "\xE2\x82\xAC";
    queue.Post(head, euros);
    MFailureQueue::Record record;
    ASSERT_TRUE(queue.Take(record));
    EXPECT_EQ(record.Text(), std::string(head) + euros.substr(0, 474));
    EXPECT_FALSE(queue.Take(record));
}
