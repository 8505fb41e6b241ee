// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/presets/MFileSettings.h"
#include "tests/support/Reports.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

TEST(MFileSettings, KeepWhatIsSetInTwoFilesThatOthersShare) {
    const TemporaryFolder folder;
    const Reports reports;
    MFileSettings settings(folder / "Plugin"), other(folder / "Plugin"), sibling(folder / "Other");
    EXPECT_EQ(settings.Get(MSettingKeys::kDefaultBandCount, 3), 3);
    EXPECT_EQ(sibling.Get(MSettingKeys::kShowConfirmations, 1), 1);
    EXPECT_FALSE(std::filesystem::exists(folder / "Plugin"));
    settings.Set(MSettingKeys::kDefaultBandCount, 5);
    other.Set("another", -7);
    other.Set(MSettingKeys::kShowConfirmations, 0);
    EXPECT_EQ(settings.Get("another", 0), -7);
    EXPECT_EQ(other.Get(MSettingKeys::kDefaultBandCount, 3), 5);
    EXPECT_EQ(sibling.Get(MSettingKeys::kShowConfirmations, 1), 0);
    EXPECT_EQ(sibling.Get(MSettingKeys::kDefaultBandCount, 3), 3);
    EXPECT_TRUE(std::filesystem::exists(folder / "Plugin/MPluginConfiguration.xml"));
    EXPECT_TRUE(std::filesystem::exists(folder / "GlobalConfiguration.xml"));

    // Where nothing can be written, a setting holds as long as its object; the failure is told.
    folder.Write("file", "no folder");
    MFileSettings stranded(folder / "file");
    stranded.Set("key", 4);
    EXPECT_EQ(stranded.Get("key", 0), 4);
    EXPECT_EQ(reports.texts.size(), 1u);
}
