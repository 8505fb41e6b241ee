// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/presets/MPresetTree.h"

#include "core/MException.h"
#include "core/MFormat.h"
#include "core/MText.h"

#include <algorithm>

namespace {

constexpr std::size_t kLongestName = 200;  // bytes

void ListFolder(const MPresetFolder& folder, const std::string& path,
                std::vector<MPresetTree::Place>& places) {
    for (const MPresetFolder& inner : folder.folders) {
        ListFolder(inner, path + inner.name + "/", places);
    }
    for (const MPreset& preset : folder.presets) places.push_back({path + preset.name, &preset});
}

bool IsName(std::string_view name) {
    return !name.empty() && name.size() <= kLongestName &&
           std::none_of(name.begin(), name.end(),
                        [](char letter) { return static_cast<unsigned char>(letter) < 0x20; });
}

}  // namespace

std::vector<MPresetTree::Place> MPresetTree::List(const MPresetFolder& root) {
    std::vector<Place> places;
    ListFolder(root, "", places);
    return places;
}

std::vector<std::string> MPresetTree::Split(std::string_view path) {
    std::vector<std::string> names;
    for (std::string_view rest = path;;) {
        const std::size_t slash = rest.find('/');
        const std::string_view name = MText::Trim(rest.substr(0, slash));
        if (!IsName(name)) throw MException(MFormat("\"{0}\" is no name of a preset.", path));
        names.emplace_back(name);
        if (slash == std::string_view::npos) return names;
        rest.remove_prefix(slash + 1);
    }
}
