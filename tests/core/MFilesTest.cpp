// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef _WIN32
#include "core/MFiles.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace fs = std::filesystem;

TEST(MFiles, ReplaceKeepsPermissionsAndLinksAndLeavesTheRestToTheUsersMask) {
    const TemporaryFolder folder;
    const fs::path file = folder / "presets.xml", link = folder / "link.xml";
    const auto modeOf = [&](const fs::path& path) {
        return static_cast<int>(fs::symlink_status(path).permissions());
    };
    fs::create_symlink("first.xml", link);
    fs::create_symlink("elsewhere/presets.xml", folder / "first.xml");
    const mode_t before = umask(027);
    MFiles::Replace(file, "new");
    MFiles::Replace(link, "new");
    umask(before);
    EXPECT_EQ(modeOf(file), 0640);
    for (const int mode : {0600, 0664, 0400}) {
        fs::permissions(file, static_cast<fs::perms>(mode));
        MFiles::Replace(file, std::to_string(mode));
        EXPECT_EQ(modeOf(file), mode);
        EXPECT_EQ(MFiles::Read(file, 99), std::to_string(mode));
    }
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(MFiles::Read(folder / "elsewhere" / "presets.xml", 99), "new");
}
#endif
