// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

class MAudioPlugin;

/// The document that lists every parameter of a plug-in for its users and for whoever scripts it.
namespace MParameterSheet {

/// The whole document, as Markdown; every line ends with a line feed. [main]
std::string Write(MAudioPlugin& plugin);

}  // namespace MParameterSheet
