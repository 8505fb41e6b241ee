// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MMutex.h"
#include "core/MXMLFile.h"
#include "plugin/presets/MSettings.h"

#include <filesystem>
#include <optional>
#include <string>

/// Settings in two files of the user's: "MPluginConfiguration.xml" for this plug-in and, above it,
/// "GlobalConfiguration.xml" for what all plug-ins of the maker share. Neither is touched before
/// the first request; what others change is seen at the next one. Failures are reported, and the
/// setting then lasts as long as the object. Any number of threads may use it at once.
class MFileSettings final : public MSettings {
public:
    /// `folder` is that of the plug-in, within the one of the maker. [any]
    explicit MFileSettings(const std::filesystem::path& folder);

    int Get(const std::string& key, int fallback) const override;
    void Set(const std::string& key, int value) override;

private:
    struct File {
        explicit File(const std::filesystem::path& path);
        MXMLNode Root();

        const MXMLFile xml;
        MFiles::Stamp stamp{};
        std::optional<MXMLTree> tree;  // as last read
    };

    File& FileOf(const std::string& key) const;

    mutable MMutex mutex_;
    mutable File plugin_;
    mutable File global_;
};
