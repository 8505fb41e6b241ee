// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/MRenderFailure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// Expects that `take` fails for the first of each of `rows`, in one line that contains the second.
template <class Rows, class Take>
void ExpectRefusals(const Rows& rows, Take&& take, MExitCode code = MExitCode::Usage) {
    for (const auto& [given, reason] : rows) {
        try {
            take(given);
            ADD_FAILURE() << "taken; expected: " << reason;
        } catch (const MRenderFailure& failure) {
            EXPECT_EQ(failure.Code(), code) << reason;
            EXPECT_THAT(failure.Text(), testing::HasSubstr(reason));
            EXPECT_EQ(failure.Text().find('\n'), std::string::npos) << failure.Text();
        }
    }
}
