// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MTripleBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace {

TEST(MTripleBuffer, TheReaderSeesWholeValuesThatNeverGoBack) {
    using Value = std::array<int, 2000>;
    MTripleBuffer<Value> buffer;
    buffer.Back().fill(0);
    buffer.Publish();
    constexpr int kLast = 200000;
    std::thread writer([&buffer] {
        for (int i = 1; i <= kLast; ++i) {
            buffer.Back().fill(i);
            buffer.Publish();
        }
    });
    int newest = 0, mixtures = 0, steps = 0;
    while (newest < kLast && mixtures == 0) {
        if (!buffer.Adopt()) continue;
        const Value& value = buffer.Front();
        const int first = value.front();
        for (int round = 0; round < 3; ++round) {  // long enough for the writer to come round
            mixtures += std::count(value.begin(), value.end(), first) == 2000 ? 0 : 1;
        }
        EXPECT_GE(first, newest);
        newest = first;
        ++steps;
    }
    writer.join();
    EXPECT_EQ(mixtures, 0) << "after " << steps;
    EXPECT_FALSE(buffer.Adopt() && mixtures == 0);
}

}  // namespace
