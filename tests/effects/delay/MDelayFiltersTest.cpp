// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayFilters.h"
#include "tests/support/DelaySettingsMaker.h"

#include <gtest/gtest.h>

TEST(MDelayFilters, SwitchOffWithinOneHertzOfTheEnds) {
    const struct {
        double low, high;
        bool filters;
    } rows[] = {{20, 20000, false}, {20.99, 19999.01, false}, {20, 19999, true}, {21, 20000, true}};
    for (const auto& row : rows) {
        for (const bool isInLoop : {false, true}) {
            MDelaySettings settings = DefaultDelaySettings();
            settings.minFrequency = row.low;
            settings.maxFrequency = row.high;
            settings.filtersFeedback = isInLoop;
            MDelayFilters filters;
            filters.Design(settings, 48000);
            EXPECT_EQ(filters.FiltersInput(), row.filters && !isInLoop) << row.low;
            EXPECT_EQ(filters.FiltersFeedback(), row.filters && isInLoop) << row.high;
        }
    }
}
