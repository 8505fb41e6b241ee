// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "core/MXMLFile.h"
#include "tests/support/Reports.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <iterator>
#include <thread>
#include <utility>
#include <vector>

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace {

void AddEntries(const fs::path& path, char name, int count) {
    const MXMLFile file(path, "list");
    for (int i = 0; i < count; ++i) {
        file.Update([&](MXMLNode root) { root.SetAttribute(name + std::to_string(i), "1"); });
    }
}

std::string Nested(int depth) {
    std::string text = "<list>";
    for (int i = 0; i < depth; ++i) text += "<a>";
    for (int i = 0; i < depth; ++i) text += "</a>";
    return text + "</list>";
}

}  // namespace

TEST(MXMLFile, LosesNothingWhenThreadsAndProcessesWriteAtOnce) {
    constexpr int kEntries = 25;
    const TemporaryFolder folder;
    const fs::path path = folder / "made/on the way/list.xml";
    std::string writers = "abcd";
    std::vector<std::thread> threads;
#ifndef _WIN32
    const pid_t child = fork();
    if (child == 0) {
        AddEntries(path, 'p', kEntries);
        _exit(0);
    }
#endif
    for (const char writer : writers) {
        threads.emplace_back([&, writer] { AddEntries(path, writer, kEntries); });
    }
    for (std::thread& thread : threads) thread.join();
#ifndef _WIN32
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    writers += 'p';
#endif
    const MXMLTree tree = MXMLFile(path, "list").Read();
    for (const char writer : writers) {
        for (int i = 0; i < kEntries; ++i) {
            EXPECT_TRUE(tree.Root().Attribute(writer + std::to_string(i))) << writer << i;
        }
    }
    const fs::directory_iterator files(path.parent_path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 2) << "the list and its lock";
}

TEST(MXMLFile, SetsADamagedFileAsideAndGoesOn) {
    const std::pair<const char*, std::string> rows[] = {
        {"empty", ""},
        {"truncated", "<?xml version=\"1.0\"?><list><entry name=\"on"},
        {"foreign", "<html><body/></html>"},
        {"no XML", std::string("\0\x01\xFF\xFE{}", 6)},
        {"nested", Nested(100000)},
        {"oversized", "grown below"},
    };
    for (const auto& [name, text] : rows) {
        const TemporaryFolder folder;
        const Reports reports;
        const fs::path path = folder / "list.xml";
        for (const char* const aside : {"list.xml.damaged", "list.xml.damaged-2"}) {
            folder.Write("list.xml", text);
            if (text == "grown below") fs::resize_file(path, MXMLFile::kLargest + 1);
            const auto size = fs::file_size(path);
            const MXMLFile file(path, "list");
            EXPECT_TRUE(file.Read().Root().Children().empty()) << name;
            ASSERT_TRUE(fs::exists(folder / aside)) << name;
            EXPECT_EQ(fs::file_size(folder / aside), size) << name;
            file.Update([](MXMLNode root) { root.SetAttribute("good", "1"); });
            EXPECT_EQ(file.Read().Root().Attribute("good"), "1") << name;
        }
        EXPECT_EQ(reports.texts.size(), 2u) << name;
    }
}

TEST(MXMLFile, KeepsWhatItDoesNotKnowAndWhatItCannotRead) {
    const TemporaryFolder folder;
    const Reports reports;
    const fs::path path = folder / "list.xml";
    const MXMLFile file(path, "list");
    folder.Write("list.xml", Nested(50));
    file.Update([](MXMLNode root) { root.SetAttribute("new", "1"); });
    int depth = 0;
    const MXMLTree tree = file.Read();
    for (MXMLNode node = tree.Root().Child("a"); node; node = node.Child("a")) ++depth;
    EXPECT_EQ(depth, 50);

    // A change that fails writes nothing; what is no file is left alone.
    EXPECT_THROW(file.Update([](MXMLNode root) {
        root.SetAttribute("half", "1");
        throw MException("no");
    }),
                 MException);
    EXPECT_FALSE(file.Read().Root().Attribute("half"));
    // A tree that no one could read again is not written either.
    const MXMLTree deep = MXMLTree::Parse(Nested(60));
    EXPECT_THROW(file.Update([&](MXMLNode root) {
        for (int i = 0; i < 20; ++i) root = root.AddChild("b");
        root.AddCopy(deep.Root());
    }),
                 MException);
    EXPECT_FALSE(file.Read().Root().Child("b"));
    fs::create_directory(folder / "folder.xml");
    const MXMLFile noFile(folder / "folder.xml", "list");
    EXPECT_THROW(noFile.Read(), MException);
    EXPECT_THROW(noFile.Update([](const MXMLNode&) {}), MException);
    EXPECT_TRUE(fs::is_directory(folder / "folder.xml"));
    EXPECT_TRUE(reports.texts.empty());
}
