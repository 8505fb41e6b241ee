// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef _WIN32
#include "core/MFiles.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace fs = std::filesystem;

TEST(MFiles, ReplaceKeepsPermissionsAndLinksAndLeavesTheRestToTheUsersMask) {
    const TemporaryFolder folder;
    const fs::path file = folder / "elsewhere/presets.xml", link = folder / "link.xml";
    fs::create_symlink("second.xml", link);
    fs::create_symlink(file, folder / "second.xml");
    const mode_t before = umask(027);
    MFiles::Replace(link, "new");
    umask(before);
    for (const int mode : {0640, 0600, 0664, 0400}) {
        if (mode != 0640) fs::permissions(file, static_cast<fs::perms>(mode));
        MFiles::Replace(file, std::to_string(mode));
        EXPECT_EQ(static_cast<int>(fs::status(file).permissions()), mode);
        EXPECT_EQ(MFiles::Read(link, 99), std::to_string(mode));
    }
    EXPECT_TRUE(fs::is_symlink(link));
}
#endif
