// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/MPluginIdentity.h"

/// What this product is called, in every place that says so.
namespace MProduct {

inline constexpr MPluginIdentity kIdentity = {
    .name = "Kestrune",
    .vendor = "Vornhal",
    .version = "7.08",
    .versionNumber = 0x070800,
};

}  // namespace MProduct
