// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/presets/MPresetFile.h"

#include "core/MException.h"
#include "core/MFiles.h"
#include "core/MFormat.h"
#include "core/MText.h"
#include "plugin/MPluginState.h"

#include <utility>

namespace {

constexpr int kDeepestFolder = 16;
constexpr std::string_view kName = "name";

std::string TextOf(const MXMLNode& element, std::string_view key) {
    return element.Attribute(key).value_or("");
}

std::vector<std::string> ReadTags(std::string_view text) {
    std::vector<std::string> tags;
    while (!text.empty()) {
        const std::size_t comma = text.find(',');
        const std::string_view tag = MText::Trim(text.substr(0, comma));
        if (!tag.empty()) tags.emplace_back(tag);
        text.remove_prefix(comma == std::string_view::npos ? text.size() : comma + 1);
    }
    return tags;
}

std::string WriteTags(const std::vector<std::string>& tags) {
    std::string text;
    for (const std::string& tag : tags) text += (text.empty() ? "" : ", ") + tag;
    return text;
}

template <class Named>
bool HasName(const std::vector<Named>& list, const std::string& name) {
    for (const Named& entry : list) {
        if (MText::EqualsIgnoringCase(entry.name, name)) return true;
    }
    return false;
}

/// Whether a name can be part of a path; what cannot is of no use and left where it is.
bool IsUsable(const std::string& name) {
    try {
        const auto names = MPresetTree::Split(name);
        return names.size() == 1 && names.front() == name;
    } catch (const MException&) {
        return false;
    }
}

MPresetFolder ReadFolderTo(const MXMLNode& element, int depth) {
    MPresetFolder folder;
    folder.name = TextOf(element, kName);
    for (const MXMLNode& child : element.Children()) {
        const std::string name = TextOf(child, kName);
        if (!IsUsable(name)) continue;
        if (child.Name() == MPresetFile::kFolder && depth > 0 && !HasName(folder.folders, name)) {
            folder.folders.push_back(ReadFolderTo(child, depth - 1));
        }
        const bool isPreset = child.Name() == MPresetFile::kPreset && !child.Children().empty();
        if (isPreset && !HasName(folder.presets, name)) {
            folder.presets.push_back(MPresetFile::ReadPreset(child));
        }
    }
    return folder;
}

}  // namespace

MPresetFolder MPresetFile::ReadFolder(const MXMLNode& element) {
    return ReadFolderTo(element, kDeepestFolder);
}

MPreset MPresetFile::ReadPreset(const MXMLNode& element) {
    const std::vector<MXMLNode> contents = element.Children();
    if (element.Name() != MPresetFile::kPreset || contents.empty()) {
        throw MException(MFormat("<{0}> is no preset.", element.Name()));
    }
    MPreset preset;
    preset.name = TextOf(element, kName);
    preset.author = TextOf(element, "author");
    preset.comment = TextOf(element, "comment");
    preset.tags = ReadTags(TextOf(element, "tags"));
    preset.isFavourite = TextOf(element, "favourite") == "1";
    preset.content = MXMLTree::CopyOf(contents.front()).Write();
    return preset;
}

void MPresetFile::WritePreset(MXMLNode element, const MPreset& preset) {
    const MXMLTree content = MXMLTree::Parse(preset.content);
    element.SetAttribute(kName, preset.name);
    element.SetAttribute("author", preset.author);
    element.SetAttribute("tags", WriteTags(preset.tags));
    element.SetAttribute("comment", preset.comment);
    element.SetAttribute("favourite", preset.isFavourite ? "1" : "0");
    for (const MXMLNode& child : element.Children()) element.RemoveChild(child);
    element.AddCopy(content.Root());
}

MXMLNode MPresetFile::FindChild(const MXMLNode& folder, std::string_view kind,
                                std::string_view name) {
    for (const MXMLNode& child : folder.Children()) {
        if (child.Name() == kind && MText::EqualsIgnoringCase(TextOf(child, kName), name)) {
            return child;
        }
    }
    return {};
}

MXMLNode MPresetFile::FindFolder(MXMLNode element, std::span<const std::string> names) {
    for (const std::string& name : names) element = FindChild(element, MPresetFile::kFolder, name);
    return element;
}

MXMLNode MPresetFile::MakeFolder(MXMLNode element, std::span<const std::string> names) {
    if (names.size() > kDeepestFolder) throw MException("Folders cannot be that deep.");
    for (const std::string& name : names) {
        MXMLNode folder = FindChild(element, MPresetFile::kFolder, name);
        if (!folder) {
            folder = element.AddChild(MPresetFile::kFolder);
            folder.SetAttribute(kName, name);
        }
        element = folder;
    }
    return element;
}

MPreset MPresetFile::Import(const std::filesystem::path& file) {
    const auto text = MFiles::Read(file, MPluginState::kLargestText);
    if (!text) throw MException(MFormat("\"{0}\" is not there.", MFiles::ToText(file)));
    try {
        const MXMLTree tree = MXMLTree::Parse(*text);
        MPreset preset;
        if (tree.Root().Name() == MPluginState::kRootName) {
            preset.content = *text;
        } else {
            preset = ReadPreset(tree.Root());
        }
        if (!IsUsable(preset.name)) preset.name = MFiles::ToText(file.stem());
        return preset;
    } catch (const MException& exception) {
        throw MException(
            MFormat("\"{0}\" is no preset: {1}", MFiles::ToText(file), exception.Text()));
    }
}

void MPresetFile::Export(const std::filesystem::path& file, const MPreset& preset) {
    const MXMLTree tree(MPresetFile::kPreset);
    WritePreset(tree.Root(), preset);
    MFiles::Replace(file, tree.Write());
}
