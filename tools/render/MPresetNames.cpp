// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MPresetNames.h"

#include "core/MFormat.h"
#include "core/MText.h"
#include "tools/render/MEditDistance.h"
#include "tools/render/MJsonWriter.h"
#include "tools/render/MRenderFailure.h"

#include <algorithm>

namespace {

std::string Joined(const std::vector<std::string>& tags) {
    std::string text;
    for (const std::string& tag : tags) text += (text.empty() ? "" : ", ") + tag;
    return text;
}

}  // namespace

const MPreset& MPresetNames::Find(const std::string& path) const {
    const int index = list_->Find(path);
    if (index >= 0) return *list_->entries[static_cast<std::size_t>(index)].preset;
    const auto distance = [wanted = MText::ToLower(path)](const MPresetList::Entry& entry) {
        // Who forgets the folder or the name is close as well.
        return std::min(MEditDistance(wanted, MText::ToLower(entry.path)),
                        MEditDistance(wanted, MText::ToLower(entry.preset->name)) + 1);
    };
    const auto nearest = std::min_element(
        list_->entries.begin(), list_->entries.end(),
        [&](const auto& left, const auto& right) { return distance(left) < distance(right); });
    std::string text = MFormat("there is no preset \"{0}\"", path);
    if (nearest != list_->entries.end()) text += MFormat("; the nearest is \"{0}\"", nearest->path);
    FailUsage(text + " (--list-presets shows all)");
}

std::string MPresetNames::Table() const {
    std::size_t pathWidth = 0, tagsWidth = 0;
    for (const auto& entry : list_->entries) {
        pathWidth = std::max(pathWidth, entry.path.size());
        tagsWidth = std::max(tagsWidth, Joined(entry.preset->tags).size());
    }
    std::string text;
    for (const auto& entry : list_->entries) {
        std::string path = entry.path, tags = Joined(entry.preset->tags);
        path.resize(pathWidth + 2, ' ');
        tags.resize(tagsWidth + 2, ' ');
        text += path + tags + entry.preset->comment + "\n";
    }
    return text;
}

std::string MPresetNames::Json() const {
    MJsonWriter json;
    json.BeginArray();
    for (const auto& entry : list_->entries) {
        json.BeginObject();
        json.Member("path", entry.path);
        json.Member("origin", entry.origin == MPresetOrigin::Factory ? "factory" : "user");
        json.Member("favourite", entry.isFavourite);
        json.Member("author", entry.preset->author);
        json.Member("tags", Joined(entry.preset->tags));
        json.Member("comment", entry.preset->comment);
        json.EndObject();
    }
    json.EndArray();
    return json.Text();
}
