// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/MParameterList.h"

#include <string>

/// The list of parameters as a user reads it: key, name, range, default and present value, in
/// columns that end in a line break. Unless `allBands`, of the bands' settings only those of the
/// first one, and a line that says so. [main]
std::string MWriteParameterTable(const MParameterList& list, bool allBands);

/// All of it for scripts: a JSON array of objects, with numbers in the records' own units beside
/// the texts. [main]
std::string MWriteParameterJson(const MParameterList& list);
