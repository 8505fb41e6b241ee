// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

/// The presets that come with the plug-in, as part of the library. Their source is made from
/// presets/factory by tools/presets/build-presets when the library is built.
namespace MFactoryPresets {

/// XML as in the user's file of presets. [any]
std::string Text();

}  // namespace MFactoryPresets
