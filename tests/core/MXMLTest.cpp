// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "core/MXML.h"

#include <gtest/gtest.h>

namespace {

std::string ParseFailure(const std::string& text) {
    try {
        MXMLTree::Parse(text);
    } catch (const MException& exception) {
        return exception.Text();
    }
    return "none";
}

}  // namespace

TEST(MXML, ReadsBackWhatItWroteAndTreatsAMissingElementAsEmpty) {
    const std::string nasty = "a<b>&\"'\t\n é \xF0\x9D\x84\x9E ";
    MXMLTree tree("state");
    MXMLNode root = tree.Root();
    root.SetAttribute("Gain", "1");
    root.SetAttribute("Gain", "-6.5");
    root.SetAttribute("text", nasty);
    root.AddChild("band").SetAttribute("index", "0");
    root.AddChild("band").SetAttribute("index", "1");
    root.AddChild("other");

    const MXMLTree copy = MXMLTree::Parse(tree.Write());
    EXPECT_EQ(copy.Root().Name(), "state");
    EXPECT_EQ(copy.Root().Attribute("Gain"), "-6.5");
    EXPECT_EQ(copy.Root().Attribute("text"), nasty);
    ASSERT_EQ(copy.Root().Children().size(), 3u);
    EXPECT_EQ(copy.Root().Children()[1].Attribute("index"), "1");
    EXPECT_EQ(copy.Root().Child("other").Name(), "other");
    EXPECT_EQ(copy.Write(), tree.Write());

    MXMLNode missing = tree.Root().Child("missing");
    EXPECT_FALSE(missing);
    missing.SetAttribute("x", "1");
    EXPECT_FALSE(missing.AddChild("c"));
    EXPECT_EQ(missing.Attribute("x"), std::nullopt);
    EXPECT_TRUE(missing.Children().empty());
}

TEST(MXML, NamesTheReasonOfAFailureAndSurvivesEveryTruncationAndDeepNesting) {
    for (const char* text :
         {"", "  ", "plain text", "<!-- only this -->", "<?xml version='1.0'?>"}) {
        EXPECT_EQ(ParseFailure(text), "The XML does not contain any elements.") << text;
    }
    const std::string whole = "<a><b key='&lt;&amp;'/></a>";
    for (std::size_t length = 2; length < whole.size(); ++length) {
        const std::string cut = ParseFailure(whole.substr(0, length));
        EXPECT_NE(cut.find("at byte"), std::string::npos) << length;
    }
    std::string deep;
    for (int i = 0; i < 200000; ++i) deep += "<a>";
    for (const std::string& text : {std::string("<a></b>"), std::string("<a x=1/>"), deep}) {
        EXPECT_NE(ParseFailure(text).find("at byte"), std::string::npos) << text.substr(0, 9);
    }
}
