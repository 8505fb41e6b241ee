// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "hosts/vst2/VstTypes.h"

#include <string>

/// A plug-in library as a host loads it: bound at once, its names kept apart from everybody else's.
class MPluginLibrary {
public:
    using Vst2Entry = Vst2::AEffect* (*)(Vst2::AudioMasterCallback host);

    /// Throws MException with the system's own words when `path` cannot be loaded. [main]
    explicit MPluginLibrary(const std::string& path);
    /// Unloads it. [main]
    ~MPluginLibrary();
    MPluginLibrary(const MPluginLibrary&) = delete;
    MPluginLibrary& operator=(const MPluginLibrary&) = delete;

    /// The address behind an exported name, null when there is none. [main]
    void* Find(const char* name) const noexcept;
    /// The entry of VST 2.4, by its name of today or of old. Throws MException without one. [main]
    Vst2Entry FindVst2Entry() const;

private:
    std::string path_;
    void* handle_;
};
