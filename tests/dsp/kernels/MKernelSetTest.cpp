// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MKernelSet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <span>
#include <vector>

namespace {

/// What the kernels of one set make of `count` numbers from `offset` on: those of the delay that
/// its comparison with the plain loop does not hold to the bit.
std::vector<double> RunKernels(const MDelayKernels& kernels, int count, int offset) {
    std::mt19937 generator(static_cast<unsigned>(count * 10 + offset));
    std::uniform_real_distribution<double> uniform(-1.5, 1.5);
    std::vector<float> in(600), out(600);
    std::vector<double> loop(600);
    for (float& sample : in) sample = static_cast<float>(uniform(generator));
    for (double& sample : loop) sample = uniform(generator);
    kernels.saturate({3.1, 1.01, 0.7, 0.8}, &loop[offset], count);
    std::vector<double> results = loop;
    const auto keep = [&] { results.insert(results.end(), out.begin(), out.end()); };
    for (const double rate : {0.001, 0.4, 0.985, 1.0, 1.004, 1.9}) {
        kernels.stretch({0.3 + count % 7, rate, count, static_cast<int>(count * rate)}, &in[offset],
                        &out[offset], count);
        keep();
    }
    in[offset + count / 2] = std::numeric_limits<float>::quiet_NaN();
    in[offset + count / 3] = -std::numeric_limits<float>::infinity();
    in[offset] = 1e38f;
    kernels.copyClean(&in[offset], &out[offset], 1.25f, count);
    keep();
    return results;
}

}  // namespace

TEST(MKernelSet, GivesTheSameBitsInEverySet) {
    const std::span<const MKernelSet> sets = RunnableKernels();
    if (sets.size() < 2) GTEST_SKIP() << "this machine runs one set only";
    for (const int count : {1, 2, 3, 4, 5, 7, 8, 15, 16, 31, 97, 256}) {
        for (const int offset : {0, 1, 3}) {
            const auto wanted = RunKernels(*sets[0].delay, count, offset);
            for (const MKernelSet& set : sets.subspan(1)) {
                EXPECT_EQ(RunKernels(*set.delay, count, offset), wanted)
                    << set.name << ", " << count << " samples from " << offset;
            }
        }
    }
}
