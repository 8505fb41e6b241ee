// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/presets/MPresetLibrary.h"

#include <memory>
#include <string>

/// The presets as the user of the command line names and sees them.
class MPresetNames {
public:
    /// [main]
    explicit MPresetNames(std::shared_ptr<const MPresetList> list) : list_(std::move(list)) {}

    /// The preset at a path. Throws MRenderFailure (Usage) with the nearest one when there is none.
    /// [main]
    const MPreset& Find(const std::string& path) const;

    /// Path, tags and sentence of each, in columns that end in a line break. [main]
    std::string Table() const;
    /// The same for scripts: a JSON array of objects. [main]
    std::string Json() const;

private:
    std::shared_ptr<const MPresetList> list_;
};
