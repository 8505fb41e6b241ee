// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/MPluginIdentity.h"

#include <cstdint>

/// What this product is called, in every place that says so.
namespace MProduct {

inline constexpr MPluginIdentity kIdentity = {
    .name = "Kestrune",
    .vendor = "Vornhal",
    .version = "7.08",
    .versionNumber = 0x070800,
};

/// What VST 2.4 hosts tell plug-ins apart by: "gx75".
inline constexpr std::int32_t kVstUniqueID = 0x67783735;

}  // namespace MProduct
