// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MMutex.h"
#include "core/MXMLFile.h"
#include "plugin/presets/MPresetTree.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Who made a preset. Those of the factory cannot be changed, only marked as favourites.
enum class MPresetOrigin { Factory, User };

/// The presets of one moment, the factory's first; it never changes.
struct MPresetList {
    struct Entry {
        MPresetOrigin origin;
        std::string path;
        const MPreset* preset;  ///< lives as long as the list
        bool isFavourite;
    };

    MPresetFolder factory;
    MPresetFolder user;
    std::vector<Entry> entries;

    /// The place of a path in `entries`, -1 when it is not there; of two the user's. [any]
    int Find(std::string_view path) const noexcept;
};

/// The presets of one category, such as those of the whole plug-in: the factory's, which are part
/// of the library, and the user's in "presets.xml". No file is touched before the first request;
/// what other instances and processes change is seen at the next one. Any number of threads may use
/// one object. Paths are those of MPresetTree; operations throw MException, and then nothing
/// changes.
class MPresetLibrary {
public:
    /// Gives the factory's presets as XML text: the same as in the user's file.
    using Factory = std::function<std::string()>;

    /// `category` is the element that holds the presets in the file. [any]
    MPresetLibrary(std::filesystem::path file, std::string category, Factory factory = {});

    /// What there is now. A file that cannot be read is reported once and counts as empty. [main]
    std::shared_ptr<const MPresetList> List();
    /// Grows whenever List has seen something new: displays follow it. [any]
    unsigned ChangeNumber() const noexcept { return changes_.load(); }

    /// Saves a preset of the user's under `path`, whatever its name was, over one that is there.
    /// [main]
    void Save(std::string_view path, MPreset preset);
    /// Deletes a preset of the user's or, without such a preset, a folder with all it holds. [main]
    void Remove(std::string_view path);
    /// Renames or moves a preset or folder of the user's. Nothing may be at `to`. [main]
    void Move(std::string_view from, std::string_view to);
    /// Marks any preset. [main]
    void SetFavourite(MPresetOrigin origin, std::string_view path, bool on);

    /// Takes a preset from a file into `folder` (empty: the top), under a name of its own; returns
    /// its path. [main]
    std::string Import(const std::filesystem::path& file, std::string_view folder);
    /// Writes any preset into a file. [main]
    void Export(std::string_view path, const std::filesystem::path& file);

private:
    void Change(const std::function<void(MXMLNode category)>& change);
    std::shared_ptr<const MPresetList> Read();

    const MXMLFile file_;
    const std::string category_;
    const Factory factory_;
    std::atomic<unsigned> changes_{0};

    MMutex mutex_;  // over the next two
    std::shared_ptr<const MPresetList> list_;
    MFiles::Stamp stamp_;  // of the file that list_ was read from
};
