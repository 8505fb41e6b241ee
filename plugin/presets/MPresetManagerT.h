// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MException.h"
#include "core/MFailureReporter.h"
#include "core/MFormat.h"
#include "core/MMutex.h"
#include "plugin/presets/MPresetLibrary.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>

/// The presets of one target, such as one instance of the plug-in: which of them is active, and the
/// way to another. `Content` says what a preset holds, see MPluginPresetContent. Any number of
/// threads may use one object, save the audio thread. Operations throw MException, and then the
/// active preset stays.
template <class Content>
class MPresetManagerT {
public:
    using Target = typename Content::Target;

    /// Both are borrowed. [main]
    MPresetManagerT(MPresetLibrary& library, Target& target) noexcept
        : library_(library), target_(target) {}

    MPresetLibrary& Library() noexcept { return library_; }

    /// The path of the preset loaded or saved last; empty before that. [main]
    std::string ActivePath() const {
        const MLock lock(pathLock_);
        return activePath_;
    }

    /// Loads the preset at a path. [main]
    void Load(std::string_view path) {
        const MLock loading(loadLock_);
        const auto list = library_.List();
        const int index = list->Find(path);
        if (index < 0) throw MException(MFormat("There is no preset \"{0}\".", path));
        LoadEntry(list->entries[static_cast<std::size_t>(index)]);
    }

    /// Loads the preset at `place` in the list, from 0; throws where there is none. [main]
    void LoadPlace(int place) {
        const MLock loading(loadLock_);
        const auto list = library_.List();
        if (place < 0 || std::cmp_greater_equal(place, list->entries.size())) {
            throw MException(MFormat("There is no preset for program {0}.", place));
        }
        LoadEntry(list->entries[static_cast<std::size_t>(place)]);
    }

    /// Loads the preset `steps` places further on (negative: back); the list's ends meet. Without
    /// an active preset, steps count from just before the first one. A preset that cannot be loaded
    /// is reported and passed over: it must not bar the way. [main]
    void Step(int steps) {
        const MLock loading(loadLock_);
        const auto list = library_.List();
        const int count = static_cast<int>(list->entries.size());
        if (count == 0 || steps == 0) return;
        const int direction = steps > 0 ? 1 : -1;
        const int active = list->Find(ActivePath());
        const int start = active >= 0 ? active : (steps > 0 ? -1 : 0);
        int index = start + steps % count;
        for (int i = 0; i < count; ++i, index += direction) {
            const auto place = static_cast<std::size_t>(((index % count) + count) % count);
            try {
                LoadEntry(list->entries[place]);
                return;
            } catch (const MException& exception) {
                MFailureReporter::Report(exception.Text());
            }
        }
    }

    /// Saves what the target holds as a preset of the user's; `details` gives all but its name and
    /// content. [main]
    void Save(std::string_view path, MPreset details = {}) {
        details.content = Content::Save(target_);
        library_.Save(path, std::move(details));
        SetActivePath(std::string(path));
    }

private:
    void LoadEntry(const MPresetList::Entry& entry) {
        Content::Load(target_, entry.preset->content);
        SetActivePath(entry.path);
    }

    void SetActivePath(std::string path) {
        const MLock lock(pathLock_);
        activePath_ = std::move(path);
    }

    MPresetLibrary& library_;
    Target& target_;
    MMutex loadLock_;  // one preset at a time
    mutable MMutex pathLock_;
    std::string activePath_;
};
