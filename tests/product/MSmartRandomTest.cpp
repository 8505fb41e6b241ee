// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MSmartRandom.h"
#include "effects/delay/MDelayRandomRules.h"
#include "product/MProductFactory.h"
#include "tests/support/RunPlugin.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

namespace {

using Group = MRandomGroup;

MSmartRandom::Settings Generate(MAudioPlugin& plugin, std::uint32_t seed,
                                const MSmartRandom::Locks& locks = {}) {
    return MSmartRandom::Generate(plugin.Parameters(), kDelayRandomRules, locks, seed);
}

}  // namespace

TEST(MSmartRandom, MakesOneToFourBandsThatAscendByAnOctaveAtLeast) {
    const auto plugin = MProductFactory::Create();
    std::set<int> counts;
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        const auto bands = Generate(*plugin, seed * 2654435761U).bands;
        counts.insert(bands->bandCount);
        for (int i = 0; i < bands->bandCount - 1; ++i) {
            const double below = i > 0 ? bands->limits[i - 1] + 0.3 : 1.99;
            EXPECT_GE(bands->limits[i], below) << seed;
            EXPECT_LE(bands->limits[i], 3.91) << seed;
        }
    }
    EXPECT_EQ(counts, (std::set{1, 2, 3, 4}));
}

TEST(MSmartRandom, LeavesGainsAndLockedGroupsAlone) {
    const auto plugin = MProductFactory::Create();
    std::size_t count = 0;
    for (const MSmartRandom::Locks& locks : {MSmartRandom::Locks(), {Group::Taps, Group::Bands}}) {
        const auto settings = Generate(*plugin, 5, locks);
        EXPECT_NE(settings.writes.size(), count);
        count = settings.writes.size();
        EXPECT_EQ(settings.bands.has_value(), !locks.Has(Group::Bands));
        for (const auto& write : settings.writes) {
            const std::string id = plugin->GetParameterID(write.identifier);
            EXPECT_TRUE(id != "Input gain" && id != "Output gain" && id != "Bypass") << id;
            const bool isLocked = id.ends_with("Feedback") || id.starts_with("Band gain");
            EXPECT_FALSE(isLocked && locks.Has(Group::Taps)) << id;
        }
    }
}

TEST(MSmartRandom, NeverRunsAwayAndIsAlwaysHeard) {
    constexpr int kRate = 16000, kBlock = 512, kSeconds = 30;
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        const auto plugin = MProductFactory::Create();
        MSmartRandom::Apply(Generate(*plugin, seed * 747796405U), *plugin);
        plugin->BandParameters().Dry().SetValue(0);
        plugin->SetSampleRate(kRate);
        plugin->InitProcessing();
        Channels input(2, kRate), output(2, kRate);
        double loudest = 0, last = 0;
        for (int second = 0; second < kSeconds; ++second) {
            for (int i = 0; i < kRate; ++i) {
                const double sound = second < 4 ? 0.25 * std::sin(i * i * 1e-5) : 0;
                for (int c = 0; c < 2; ++c) input[c][i] = static_cast<float>(sound);
            }
            RunPlugin(*plugin, input, output, kBlock);
            last = std::pow(10, DifferenceDb(Channels(2, kRate), output, 0) / 20);
            loudest = std::max(loudest, last);
        }
        EXPECT_GT(loudest, 0.01) << seed;
        EXPECT_LT(loudest, 0.9) << seed;
        EXPECT_LT(last, 1e-3) << seed;
    }
}
