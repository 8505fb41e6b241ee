// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/presets/MSettings.h"

int MMemorySettings::Get(const std::string& key, int fallback) const {
    const MLock lock(mutex_);
    const auto found = values_.find(key);
    return found != values_.end() ? found->second : fallback;
}

void MMemorySettings::Set(const std::string& key, int value) {
    const MLock lock(mutex_);
    values_[key] = value;
}
