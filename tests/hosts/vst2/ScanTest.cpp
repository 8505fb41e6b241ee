// SPDX-License-Identifier: GPL-3.0-or-later
#if defined(__linux__)
#include "tests/support/TemporaryFolder.h"
#include "tools/hostcheck/MVst2Host.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sys/inotify.h>
#include <unistd.h>

using namespace Vst2;

namespace {

std::ptrdiff_t Threads() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

TEST(Scan, LeavesFilesAndThreadsAndWithThemTheUsersDefaultsForTheFirstUse) {
    const TemporaryFolder home;
    const std::string folder = home / "Vornhal/Kestrune";
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/MPluginConfiguration.xml") << "<settings DefaultBandCount=\"5\"/>";
    setenv("XDG_CONFIG_HOME", (home / "").c_str(), 1);
    const int watch = inotify_init1(IN_NONBLOCK);
    ASSERT_GE(inotify_add_watch(watch, folder.c_str(), IN_OPEN | IN_CREATE), 0);
    char events[4096];
    const std::ptrdiff_t threads = Threads();

    const MPluginLibrary library(KESTRUNE_LIBRARY);
    MVst2Host host(library.FindVst2Entry()), other(library.FindVst2Entry());
    const auto limit = [&](const char* name) {
        return host.Text(effGetParamDisplay, host.FindParameter(name).value());
    };
    const std::string three = limit("Band limit 1");
    host.Call(effSetSampleRate, 0, 0, nullptr, 96000);
    ASSERT_TRUE(host.SetParameterText(host.FindParameter("Band limit 3").value(), "3 kHz"));
    const std::string written = limit("Band limit 3");
    EXPECT_EQ(Threads(), threads);
    EXPECT_EQ(read(watch, events, sizeof events), -1);

    const int updates = host.Asked().displayUpdates;
    ASSERT_TRUE(host.Start(2, 48000, 64));
    EXPECT_GT(Threads(), threads);
    EXPECT_GT(read(watch, events, sizeof events), 0);
    EXPECT_GT(host.Asked().displayUpdates, updates);
    EXPECT_NE(limit("Band limit 1"), three);
    EXPECT_EQ(limit("Band limit 3"), written) << "the host's own";

    const std::string state = "<settings BandCount=\"2\"><band0/></settings>";
    other.LoadState({reinterpret_cast<const std::uint8_t*>(state.data()), state.size()});
    const auto loaded = other.SaveState();
    ASSERT_TRUE(other.Start(2, 48000, 64));
    EXPECT_EQ(other.SaveState(), loaded);
    close(watch);
}

}  // namespace
#endif
