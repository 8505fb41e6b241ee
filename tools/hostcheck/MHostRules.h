// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/hostcheck/MPluginLibrary.h"

#include <string>
#include <vector>

/// What hosts rely on and plug-ins break without any host saying so.
namespace MHostRules {

/// The rules that the plug-in breaks, in words. Throws MException when the plug-in cannot be
/// created. [main]
std::vector<std::string> Faults(MPluginLibrary::Vst2Entry entry);

}  // namespace MHostRules
