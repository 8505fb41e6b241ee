// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/presets/MPresetLibrary.h"

#include "core/MException.h"
#include "core/MFailureReporter.h"
#include "core/MFormat.h"
#include "core/MText.h"
#include "plugin/presets/MPresetFile.h"

#include <algorithm>
#include <span>
#include <utility>

namespace {

constexpr std::string_view kRoot = "presets";
/// Marks a preset of the factory: what belongs to the user stands in the user's file.
constexpr std::string_view kFactoryFavourite = "factoryfavourite";

using Names = std::vector<std::string>;

std::span<const std::string> FolderOf(const Names& names) {
    return std::span(names).first(names.size() - 1);
}

[[noreturn]] void FailMissing(std::string_view path) {
    throw MException(MFormat("There is no preset \"{0}\".", path));
}

/// A preset or folder of the user's, and the folder it is in.
struct Found {
    MXMLNode folder;
    MXMLNode element;
};

Found FindElement(const MXMLNode& category, std::string_view path) {
    const Names names = MPresetTree::Split(path);
    const MXMLNode folder = MPresetFile::FindFolder(category, FolderOf(names));
    for (const std::string_view kind : {MPresetFile::kPreset, MPresetFile::kFolder}) {
        if (const auto element = MPresetFile::FindChild(folder, kind, names.back())) {
            return {folder, element};
        }
    }
    FailMissing(path);
}

MXMLNode FindFactoryFavourite(const MXMLNode& category, std::string_view path) {
    for (const MXMLNode& child : category.Children()) {
        const bool isMark = child.Name() == kFactoryFavourite;
        if (isMark && MText::EqualsIgnoringCase(child.Attribute("path").value_or(""), path)) {
            return child;
        }
    }
    return {};
}

void AddEntries(MPresetList& list, const MXMLNode& category) {
    for (const auto& [path, preset] : MPresetTree::List(list.factory)) {
        const bool isFavourite = static_cast<bool>(FindFactoryFavourite(category, path));
        list.entries.push_back({MPresetOrigin::Factory, path, preset, isFavourite});
    }
    for (const auto& [path, preset] : MPresetTree::List(list.user)) {
        list.entries.push_back({MPresetOrigin::User, path, preset, preset->isFavourite});
    }
}

}  // namespace

int MPresetList::Find(std::string_view path) const noexcept {
    const auto found = std::find_if(entries.rbegin(), entries.rend(), [&](const Entry& entry) {
        return MText::EqualsIgnoringCase(entry.path, path);
    });
    return static_cast<int>(entries.rend() - found) - 1;
}

MPresetLibrary::MPresetLibrary(std::filesystem::path file, std::string category, Factory factory)
    : file_(std::move(file), std::string(kRoot)),
      category_(std::move(category)),
      factory_(std::move(factory)) {}

std::shared_ptr<const MPresetList> MPresetLibrary::List() {
    const MLock lock(mutex_);
    // Taken before reading: a change in between is found at the next request.
    const MFiles::Stamp stamp = file_.Stamp();
    if (list_ != nullptr && stamp == stamp_) return list_;
    list_ = Read();
    stamp_ = stamp;
    ++changes_;
    return list_;
}

std::shared_ptr<const MPresetList> MPresetLibrary::Read() {
    MXMLTree file{kRoot};
    try {
        file = file_.Read();
    } catch (const MException& exception) {
        MFailureReporter::Report(exception.Text());
    }
    auto list = std::make_shared<MPresetList>();
    const MXMLNode category = file.Root().Child(category_);
    list->user = MPresetFile::ReadFolder(category);
    if (list_ != nullptr) {
        list->factory = list_->factory;
    } else if (factory_) {
        const MXMLTree made = MXMLTree::Parse(factory_());
        list->factory = MPresetFile::ReadFolder(made.Root().Child(category_));
    }
    AddEntries(*list, category);
    return list;
}

void MPresetLibrary::Change(const std::function<void(MXMLNode category)>& change) {
    file_.Update([&](MXMLNode root) {
        MXMLNode category = root.Child(category_);
        if (!category) category = root.AddChild(category_);
        change(category);
    });
    // Two changes within the clock's grain may leave the same stamp.
    const MLock lock(mutex_);
    stamp_ = {};
    if (list_ != nullptr) list_ = Read();
    ++changes_;
}

void MPresetLibrary::Save(std::string_view path, MPreset preset) {
    const Names names = MPresetTree::Split(path);
    preset.name = names.back();
    Change([&](const MXMLNode& category) {
        MXMLNode folder = MPresetFile::MakeFolder(category, FolderOf(names));
        MXMLNode element = MPresetFile::FindChild(folder, MPresetFile::kPreset, preset.name);
        if (!element) element = folder.AddChild(MPresetFile::kPreset);
        MPresetFile::WritePreset(element, preset);
    });
}

void MPresetLibrary::Remove(std::string_view path) {
    Change([&](const MXMLNode& category) {
        Found found = FindElement(category, path);
        found.folder.RemoveChild(found.element);
    });
}

void MPresetLibrary::Move(std::string_view from, std::string_view to) {
    const Names names = MPresetTree::Split(to);
    Change([&](const MXMLNode& category) {
        Found found = FindElement(category, from);
        // Taken out first: a folder cannot be moved into itself, and a name may change its case.
        MXMLTree moved = MXMLTree::CopyOf(found.element);
        found.folder.RemoveChild(found.element);
        moved.Root().SetAttribute("name", names.back());
        MXMLNode folder = MPresetFile::MakeFolder(category, FolderOf(names));
        if (MPresetFile::FindChild(folder, moved.Root().Name(), names.back())) {
            throw MException(MFormat("There is a preset \"{0}\" already.", to));
        }
        folder.AddCopy(moved.Root());
    });
}

void MPresetLibrary::SetFavourite(MPresetOrigin origin, std::string_view path, bool on) {
    Change([&](MXMLNode category) {
        if (origin == MPresetOrigin::User) {
            FindElement(category, path).element.SetAttribute("favourite", on ? "1" : "0");
            return;
        }
        const MXMLNode mark = FindFactoryFavourite(category, path);
        if (mark && !on) category.RemoveChild(mark);
        if (!mark && on) category.AddChild(kFactoryFavourite).SetAttribute("path", path);
    });
}

std::string MPresetLibrary::Import(const std::filesystem::path& file, std::string_view folder) {
    const MPreset preset = MPresetFile::Import(file);
    const std::string start = folder.empty() ? "" : std::string(folder) + "/";
    std::string path = start + preset.name;
    const auto list = List();
    const auto isTaken = [&] {
        const int index = list->Find(path);
        return index >= 0 &&
               list->entries[static_cast<std::size_t>(index)].origin == MPresetOrigin::User;
    };
    for (int i = 2; isTaken(); ++i) path = MFormat("{0}{1} {2}", start, preset.name, i);
    Save(path, preset);
    return path;
}

void MPresetLibrary::Export(std::string_view path, const std::filesystem::path& file) {
    const auto list = List();
    const int index = list->Find(path);
    if (index < 0) FailMissing(path);
    MPresetFile::Export(file, *list->entries[static_cast<std::size_t>(index)].preset);
}
