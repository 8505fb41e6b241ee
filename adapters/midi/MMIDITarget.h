// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/MArchive.h"

#include <cstdint>
#include <optional>
#include <string>

class MAudioPlugin;

/// The parameter that an assignment moves. It is known by its stable key, so that it survives other
/// versions with other parameters; the identifier only says where to look first.
struct MMIDITarget {
    std::string parameter;  ///< empty for none
    int identifier = 0;

    bool operator==(const MMIDITarget&) const = default;

    /// The parameter with that identifier. [main]
    static MMIDITarget Of(MAudioPlugin& plugin, std::uint32_t identifier);

    /// Its identifier in `plugin`; nothing when the plug-in has no such parameter. [main]
    std::optional<std::uint32_t> Find(MAudioPlugin& plugin) const;

    /// Keys of the node: "Parameter", "Identifier". [main]
    void Store(MXMLNode node, const MArchive& archive);
};
