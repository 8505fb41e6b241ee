// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string_view>

/// Who a plug-in says it is. The texts live as long as the program.
struct MPluginIdentity {
    std::string_view name;
    std::string_view vendor;
    std::string_view version;    ///< as the user reads it
    std::int32_t versionNumber;  ///< kept in every state, so that a later version knows its origin
};
