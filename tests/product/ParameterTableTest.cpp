// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MFiles.h"
#include "product/MProductFactory.h"
#include "tools/parameters/MParameterSheet.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace {

TEST(ParameterTable, IsTheOneThatProjectsRelyOn) {
    const auto plugin = MProductFactory::Create();
    EXPECT_EQ(MParameterSheet::Write(*plugin),
              MFiles::Read(MFiles::FromText(KESTRUNE_PARAMETER_SHEET), 1 << 20));
}

TEST(ParameterTable, HasKeysAndNamesThatStayApartAndTextsThatReadBack) {
    const auto plugin = MProductFactory::Create();
    std::set<std::string> keys, names;
    std::minstd_rand generator(1);
    std::uniform_real_distribution<double> uniform(0, 1);
    for (std::uint32_t id = 0; id < static_cast<std::uint32_t>(plugin->ParameterCount()); ++id) {
        EXPECT_LE(plugin->GetParameterID(id).size(), 24u) << id;
        EXPECT_TRUE(keys.insert(plugin->GetParameterID(id)).second) << id;
        EXPECT_TRUE(names.insert(plugin->GetParameterName(id)).second) << id;
        for (const double x : {0.0, uniform(generator), uniform(generator), 1.0}) {
            plugin->SetParameter(id, x, false);
            const std::string text = plugin->GetParameterValueName(id);
            plugin->SetParameter(id, plugin->ParseParameterValueName(id, text), false);
            EXPECT_EQ(plugin->GetParameterValueName(id), text) << id;
        }
    }
}

}  // namespace
