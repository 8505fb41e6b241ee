// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MGuard.h"
#include "tests/support/Reports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

TEST(MGuard, HandsResultsThroughAndAnswersNeutrallyForFailuresItReports) {
    const Reports reports;
    EXPECT_EQ(Guard("MClass::Get", 0, [] { return 5; }), 5);
    EXPECT_EQ(Guard("MClass::Get", 7, []() -> int { throw MException("Out of range."); }), 7);
    Guard<MExceptionPolicy::Swallow>("MClass::Set", [] { throw MException("Expected."); });
    Guard("MClass::Set", [] { throw std::runtime_error("secret"); });
    EXPECT_EQ(Guard<MExceptionPolicy::Swallow>("MClass::Get", -1, []() -> int { throw 3; }), -1);
    EXPECT_THAT(reports.texts,
                testing::ElementsAre("Out of range.", "SYSTEM EXCEPTION! MClass::Set",
                                     "SYSTEM EXCEPTION! MClass::Get"));
}
