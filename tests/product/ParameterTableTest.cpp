// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MFiles.h"
#include "product/MProductFactory.h"
#include "tools/parameters/MParameterSheet.h"

#include <gtest/gtest.h>

namespace {

TEST(ParameterTable, IsTheOneThatProjectsRelyOn) {
    const auto plugin = MProductFactory::Create();
    EXPECT_EQ(MParameterSheet::Write(*plugin),
              MFiles::Read(MFiles::FromText(KESTRUNE_PARAMETER_SHEET), 1 << 20));
}

}  // namespace
