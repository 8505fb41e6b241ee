// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "plugin/MEffectHandle.h"
#include "tests/support/ProbeEffect.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

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
