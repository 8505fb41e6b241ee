// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef _WIN32
#include "core/MException.h"
#include "core/MFiles.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

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

TEST(MFiles, ReplaceLeavesOneWholeContentWhenThreadsReplaceAtOnce) {
    const TemporaryFolder folder;
    const fs::path file = folder / "presets.xml";
    folder.Write("presets.xml", std::string(1, 'a'));
    std::atomic<int> failures{0}, writers{2};
    const auto write = [&](char letter, std::size_t size) {
        for (int i = 0; i < 50; ++i) {
            try {
                MFiles::Replace(file, std::string(size, letter));
            } catch (const MException&) {
                ++failures;
            }
        }
        --writers;
    };
    std::thread first(write, 'a', 1), second(write, 'b', 300000);
    while (writers > 0) {
        const std::string text = MFiles::Read(file, 300000).value_or("");
        if (text != "a" && text != std::string(300000, 'b')) ++failures;
    }
    first.join();
    second.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(folder.Files(), 1) << "nothing but the file itself";
}

TEST(MFiles, ReplaceRemovesWhatKilledProcessesLeftButNothingThatIsBeingWritten) {
    const TemporaryFolder folder;
    for (const char* name : {".kestrune-1-1.tmp", ".kestrune-1-2.tmp"}) folder.Write(name, "half");
    const int written = open((folder / ".kestrune-1-2.tmp").c_str(), O_WRONLY);
    ASSERT_EQ(flock(written, LOCK_EX), 0);
    MFiles::Replace(folder / "presets.xml", "a");
    EXPECT_FALSE(fs::exists(folder / ".kestrune-1-1.tmp"));
    EXPECT_TRUE(fs::exists(folder / ".kestrune-1-2.tmp"));
    close(written);
}
#endif
