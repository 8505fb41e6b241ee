// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "plugin/MEffectHandle.h"
#include "tests/support/ProbeEffect.h"

#include <gtest/gtest.h>

namespace {

TEST(MEffectHandle, DestroysItsEffectExactlyOnceAndThrowsWithoutOne) {
    const MEffectEntry entry = ProbeEffect::Reset();
    {
        const MEffectHandle effect(entry);
        EXPECT_EQ(ProbeEffect::Noted().destroyed, 0);
    }
    EXPECT_EQ(ProbeEffect::Noted().created, 1);
    EXPECT_EQ(ProbeEffect::Noted().destroyed, 1);
    const MEffectEntry none = ProbeEffect::Reset({.failsToCreate = true});
    EXPECT_THROW(MEffectHandle{none}, MException);
}

}  // namespace
