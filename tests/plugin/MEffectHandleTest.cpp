// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "plugin/MEffectHandle.h"
#include "tests/support/ProbeEffect.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace {

std::int64_t Answer(void*, std::int64_t, const MEffectArguments*) { return 0; }

TEST(MEffectHandle, HandsEveryCommandOverWithItsPayloads) {
    MEffectHandle effect(ProbeEffect::Reset());
    int context = 0;
    effect.SetHostCallback(&context, &Answer);
    EXPECT_EQ(ProbeEffect::Noted().context, &context);
    EXPECT_EQ(ProbeEffect::Noted().callback, &Answer);

    ASSERT_EQ(effect.Table().size(), std::size_t{ProbeEffect::kRecords});
    effect.Table()[ProbeEffect::Level].SetValue(0.5);
    effect.ParameterChanged(-1);
    EXPECT_EQ(ProbeEffect::Noted().changed, std::vector<std::int64_t>{-1});

    EXPECT_EQ(effect.Prepare(2, 48000), 0);
    EXPECT_EQ(ProbeEffect::Noted().channels, 2);
    EXPECT_EQ(ProbeEffect::Noted().sampleRate, 48000);

    std::array<float, 3> left = {1, 2, 3}, right = {4, 5, 6};
    float* channels[] = {left.data(), right.data()};
    MTransport transport;
    transport.tempo = 97;
    effect.Process(&transport, channels, channels, 3);
    EXPECT_EQ(ProbeEffect::Noted().transports.at(0).tempo, 97);
    EXPECT_EQ(left, (std::array<float, 3>{0.5f, 1, 1.5f}));
    EXPECT_EQ(right, (std::array<float, 3>{2, 2.5f, 3}));

    EXPECT_TRUE(effect.IsTailSilent());
    MXMLTree tree("state");
    MXMLNode node = tree.Root();
    EXPECT_FALSE(effect.Load(node));
    effect.Save(node);
    EXPECT_EQ(node.Attribute("probe"), "saved");
    EXPECT_TRUE(effect.Load(node));
}

TEST(MEffectHandle, DestroysEachEffectExactlyOnceAcrossMoves) {
    const MEffectEntry entry = ProbeEffect::Reset();
    {
        MEffectHandle first(entry);
        MEffectHandle second(std::move(first));
        MEffectHandle third(entry);
        third = std::move(second);
        EXPECT_EQ(ProbeEffect::Noted().destroyed, 1);
    }
    EXPECT_EQ(ProbeEffect::Noted().created, 2);
    EXPECT_EQ(ProbeEffect::Noted().destroyed, 2);
    const MEffectEntry none = ProbeEffect::Reset({.failsToCreate = true});
    EXPECT_THROW(MEffectHandle{none}, MException);
}

}  // namespace
