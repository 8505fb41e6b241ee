// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MMutex.h"

#include <map>
#include <string>
#include <string_view>

/// Settings that belong to the user rather than to a project: whole numbers under stable keys;
/// switches are 0 and 1.
class MSettings {
public:
    virtual ~MSettings() = default;

    /// The setting's value; `fallback` while it was never set. [main]
    virtual int Get(const std::string& key, int fallback) const = 0;
    /// [main]
    virtual void Set(const std::string& key, int value) = 0;
};

/// Settings that last as long as the object. Any number of threads may use it at once.
class MMemorySettings final : public MSettings {
public:
    int Get(const std::string& key, int fallback) const override;
    void Set(const std::string& key, int value) override;

private:
    mutable MMutex mutex_;
    std::map<std::string, int> values_;
};

/// Keys of the settings; never renamed.
namespace MSettingKeys {
inline constexpr const char* kDefaultBandCount = "DefaultBandCount";
inline constexpr const char* kShowConfirmations = "showconfirmations";

/// Whether a setting holds for all plug-ins of the maker rather than for this one. [any]
inline bool IsGlobal(std::string_view key) { return key == kShowConfirmations; }
}  // namespace MSettingKeys
