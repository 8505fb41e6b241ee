// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "plugin/presets/MPresetLibrary.h"
#include "plugin/presets/MPresetManagerT.h"
#include "tests/support/Reports.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string FactoryText() {
    return "<presets><plugin><folder name='Dub'><preset name='Tape' tags='a,  b'><s "
           "v='1'/></preset>"
           "<preset name='Siren'><s v='2'/></preset></folder></plugin></presets>";
}

MPreset PresetOf(const std::string& content) {
    MPreset preset;
    preset.content = content;
    return preset;
}

MPreset Preset(int value) { return PresetOf("<s v='" + std::to_string(value) + "'/>"); }

std::vector<std::string> Paths(MPresetLibrary& library) {
    std::vector<std::string> paths;
    for (const auto& entry : library.List()->entries) paths.push_back(entry.path);
    return paths;
}

/// Holds the XML text it was given; the value 9 cannot be loaded.
struct TextContent {
    using Target = std::string;
    static std::string Save(std::string& target) { return target; }
    static void Load(std::string& target, std::string_view text) {
        if (text.find("v=\"9\"") != std::string_view::npos) throw MException("bad");
        target = text.substr(text.find("<s"), 9);
    }
};

class MPresetLibraryTest : public testing::Test {
protected:
    const TemporaryFolder folder;
    MPresetLibrary library{folder / "presets.xml", "plugin", &FactoryText};
    MPresetLibrary other{folder / "presets.xml", "plugin", &FactoryText};  // another process
};

}  // namespace

TEST_F(MPresetLibraryTest, ShowsAtOnceWhatAnyInstanceSavesRenamesMovesAndDeletes) {
    const auto listBefore = other.List();
    EXPECT_THAT(listBefore->entries[0].preset->tags, ElementsAre("a", "b"));
    EXPECT_EQ(folder.Files(), 0);  // looking touches none
    const unsigned before = other.ChangeNumber();
    library.Save("Mine/ Lead ", Preset(3));
    library.Save("mine/lead", Preset(4));
    EXPECT_THAT(Paths(other), ElementsAre("Dub/Tape", "Dub/Siren", "Mine/lead"));
    EXPECT_GT(other.ChangeNumber(), before);
    EXPECT_EQ(listBefore->entries.size(), 2u);
    other.Save("Mine/Pad", Preset(5));
    library.Move("Mine/Lead", "Mine/LEAD");
    library.Move("Mine/Pad", "Deep/er/Pad");
    EXPECT_THAT(Paths(other), ElementsAre("Dub/Tape", "Dub/Siren", "Mine/LEAD", "Deep/er/Pad"));
    library.Move("deep", "Mine/Deep");
    other.Remove("Mine/LEAD");
    EXPECT_THAT(Paths(library), ElementsAre("Dub/Tape", "Dub/Siren", "Mine/Deep/er/Pad"));
    other.Remove("Mine");
    EXPECT_THAT(Paths(library), ElementsAre("Dub/Tape", "Dub/Siren"));
}

TEST_F(MPresetLibraryTest, RefusesWhatMakesNoSenseAndChangesNothing) {
    library.Save("A/One", Preset(1));
    library.Save("Two", Preset(2));
    const std::string before = folder.Read("presets.xml");
    const std::string longName(201, 'x');
    std::string deep = "x";
    for (int i = 0; i < 17; ++i) deep += "/x";
    for (const std::string& path : {std::string(), std::string("A/"), std::string("/A"),
                                    std::string("a\nb"), longName, deep}) {
        EXPECT_THROW(library.Save(path, Preset(1)), MException) << path;
    }
    EXPECT_THROW(library.Save("Text", PresetOf("no XML")), MException);
    EXPECT_THROW(library.Remove("Dub/Tape"), MException);
    EXPECT_THROW(library.Move("Dub/Tape", "Mine"), MException);
    EXPECT_THROW(library.Move("Two", "a/ONE"), MException);
    EXPECT_EQ(folder.Read("presets.xml"), before);
    // A folder that is moved into itself would be gone.
    library.Move("A", "A/B");
    EXPECT_THAT(Paths(library), testing::Contains("A/B/One"));
}

TEST_F(MPresetLibraryTest, MarksFavouritesOfBothTreesAndKeepsWhatItDoesNotKnow) {
    folder.Write(
        "presets.xml",
        "<presets later='1'><online/><plugin><folder name='A' colour='red'><preset name='One' "
        "rating='5'><s/></preset><preset/><preset "
        "name='a/b'><s/></preset></folder></plugin></presets>");
    library.SetFavourite(MPresetOrigin::Factory, "Dub/Siren", true);
    library.SetFavourite(MPresetOrigin::User, "A/One", true);
    library.Save("A/One", Preset(7));
    library.SetFavourite(MPresetOrigin::User, "A/One", true);
    std::vector<bool> marks;
    for (const auto& entry : other.List()->entries) marks.push_back(entry.isFavourite);
    EXPECT_THAT(marks, ElementsAre(false, true, true));
    const std::string text = folder.Read("presets.xml");
    for (const char* const kept :
         {"later=\"1\"", "<online", "colour=\"red\"", "rating=\"5\"", "name=\"a/b\""}) {
        EXPECT_THAT(text, HasSubstr(kept));
    }
    library.SetFavourite(MPresetOrigin::Factory, "dub/siren", false);
    EXPECT_FALSE(other.List()->entries[1].isFavourite);
}

TEST_F(MPresetLibraryTest, ExchangesSinglePresetsAndRefusesOtherFiles) {
    MPreset preset = Preset(3);
    preset.tags = {"x", "y"};
    preset.comment = "ä <&\"";
    library.Save("Mine/Lead", preset);
    library.Export("mine/lead", folder / "lead.xml");
    EXPECT_EQ(library.Import(folder / "lead.xml", "Mine"), "Mine/Lead 2");
    EXPECT_EQ(library.Import(folder / "lead.xml", ""), "Lead");
    const auto list = library.List();
    const MPreset& copy =
        *list->entries[static_cast<std::size_t>(list->Find("Mine/Lead 2"))].preset;
    EXPECT_EQ(copy.comment, preset.comment);
    EXPECT_EQ(copy.tags, preset.tags);
    folder.Write("State.xml", "<settings BandCount='2'/>");
    EXPECT_EQ(library.Import(folder / "State.xml", ""), "State");
    for (const char* const text :
         {"", "<preset name='x'/>", "<html><body/></html>", "<preset><s>"}) {
        folder.Write("bad.xml", text);
        EXPECT_THROW(library.Import(folder / "bad.xml", ""), MException) << text;
    }
    EXPECT_THROW(library.Import(folder / "missing.xml", ""), MException);
    EXPECT_TRUE(std::filesystem::exists(folder / "bad.xml"));
}

TEST_F(MPresetLibraryTest, StepsRoundTheListAndOverWhatCannotBeLoaded) {
    library.Save("Mine", Preset(3));
    std::string target;
    MPresetManagerT<TextContent> manager(library, target);
    const std::pair<int, const char*> rows[] = {{1, "Dub/Tape"},    {-1, "Mine"}, {2, "Dub/Siren"},
                                                {301, "Mine"},      {0, "Mine"},  {-4, "Dub/Siren"},
                                                {-300, "Dub/Siren"}};
    for (const auto& [steps, path] : rows) {
        manager.Step(steps);
        EXPECT_EQ(manager.ActivePath(), path) << steps;
    }
    EXPECT_EQ(target, "<s v=\"2\" ");
    library.Save("Mine", Preset(9));
    EXPECT_THROW(manager.Load("Mine"), MException);
    manager.LoadPlace(0);
    EXPECT_EQ(manager.ActivePath(), "Dub/Tape");
    manager.LoadPlace(1);
    for (const int place : {-1, 3}) EXPECT_THROW(manager.LoadPlace(place), MException) << place;
    EXPECT_THROW(manager.Load("Dub/Nothing"), MException);
    EXPECT_EQ(manager.ActivePath(), "Dub/Siren");
    const Reports reports;
    manager.Step(1);  // over the one that cannot be loaded
    EXPECT_EQ(manager.ActivePath(), "Dub/Tape");
    EXPECT_EQ(reports.texts.size(), 1u);
    // The active preset may be gone; the way goes on from the start.
    target = "<s v='6'/>";
    manager.Save("Dub/New");
    library.Remove("Dub/New");
    manager.Step(1);
    EXPECT_EQ(manager.ActivePath(), "Dub/Tape");
}
