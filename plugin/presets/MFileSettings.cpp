// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/presets/MFileSettings.h"

#include "core/MException.h"
#include "core/MFailureReporter.h"
#include "plugin/MArchive.h"

namespace {

constexpr const char* kRoot = "settings";

}  // namespace

MFileSettings::File::File(const std::filesystem::path& path) : xml(path, kRoot) {}

/// What the file holds now; what was last known of it when it cannot be read.
MXMLNode MFileSettings::File::Root() {
    const MFiles::Stamp now = xml.Stamp();
    if (!tree || now != stamp) {
        stamp = now;
        try {
            tree = xml.Read();
        } catch (const MException& exception) {
            if (!tree) tree.emplace(kRoot);
            MFailureReporter::Report(exception.Text());
        }
    }
    return tree->Root();
}

MFileSettings::MFileSettings(const std::filesystem::path& folder)
    : plugin_(folder / "MPluginConfiguration.xml"),
      global_(folder.parent_path() / "GlobalConfiguration.xml") {}

int MFileSettings::Get(const std::string& key, int fallback) const {
    const MLock lock(mutex_);
    int value = fallback;
    MArchive(MArchive::Direction::Read).Integer(FileOf(key).Root(), key, value);
    return value;
}

void MFileSettings::Set(const std::string& key, int value) {
    const MLock lock(mutex_);
    File& file = FileOf(key);
    const auto change = [&](MXMLNode root) { root.SetAttribute(key, std::to_string(value)); };
    change(file.Root());  // holds even when the file cannot be written
    try {
        file.xml.Update(change);
    } catch (const MException& exception) {
        MFailureReporter::Report(exception.Text());
    }
}

MFileSettings::File& MFileSettings::FileOf(const std::string& key) const {
    return MSettingKeys::IsGlobal(key) ? global_ : plugin_;
}
