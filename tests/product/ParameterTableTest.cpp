// SPDX-License-Identifier: GPL-3.0-or-later
#include "product/MProduct.h"
#include "product/MProductFactory.h"
#include "tests/support/RunPlugin.h"
#include "tools/parameters/MParameterSheet.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <set>
#include <sstream>

namespace {

TEST(ParameterTable, IsTheOneThatProjectsRelyOn) {
    const auto plugin = MProductFactory::Create();
    std::ifstream file(KESTRUNE_PARAMETER_SHEET, std::ios::binary);
    std::stringstream sheet;
    sheet << file.rdbuf();
    ASSERT_FALSE(sheet.str().empty()) << KESTRUNE_PARAMETER_SHEET;
    EXPECT_EQ(MParameterSheet::Write(*plugin), sheet.str());
}

TEST(ParameterTable, HasContiguousIdentifiersAndKeysThatStayApartInAHostsList) {
    const auto plugin = MProductFactory::Create();
    ASSERT_EQ(plugin->ParameterCount(), 208);
    std::set<std::string> keys, names;
    for (int i = 0; i < plugin->ParameterCount(); ++i) {
        const auto identifier = static_cast<std::uint32_t>(i);
        ASSERT_EQ(plugin->Parameters().At(i).FirstIdentifier(), identifier);
        const std::string key = plugin->GetParameterID(identifier);
        EXPECT_LE(key.size(), 24u) << key;
        EXPECT_TRUE(keys.insert(key).second) << key;
        EXPECT_TRUE(names.insert(plugin->GetParameterName(identifier)).second) << key;
    }
    EXPECT_EQ(plugin->Identity().name, "Kestrune");
    EXPECT_EQ(plugin->Identity().vendor, "Vornhal");
    EXPECT_EQ(plugin->Identity().version, "7.08");
}

TEST(ParameterTable, EveryDisplayTextReadsBackToItsValue) {
    const auto plugin = MProductFactory::Create();
    std::minstd_rand generator(1);
    std::uniform_real_distribution<double> uniform(0, 1);
    for (int i = 0; i < plugin->ParameterCount(); ++i) {
        const auto identifier = static_cast<std::uint32_t>(i);
        for (const double x : {0.0, uniform(generator), uniform(generator), 1.0}) {
            plugin->SetParameter(identifier, x, false);
            const std::string text = plugin->GetParameterValueName(identifier);
            plugin->SetParameter(identifier, plugin->ParseParameterValueName(identifier, text),
                                 false);
            EXPECT_EQ(plugin->GetParameterValueName(identifier), text) << identifier;
        }
    }
}

}  // namespace
