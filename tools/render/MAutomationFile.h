// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/MRenderLane.h"
#include "tools/render/MSettingReader.h"

#include <filesystem>
#include <vector>

/// Reads the lanes of an automation file (JSON): a list of lanes, or an object with a "unit" for
/// all of them and the "lanes".
///
/// A lane is {"parameter": name, "points": [{"time": t, "value": v}, ...], "curve": "step" or
/// "linear", "unit": "seconds", "samples" or "beats"}. Values are texts as the parameter shows
/// them, numbers in the record's own units, true and false for switches, or {"normalised": 0..1}.
/// Throws MRenderFailure: File when the file cannot be read, Usage, with the place in the file,
/// when what it says makes no sense. [main]
std::vector<MRenderLane> MReadAutomation(const std::filesystem::path& path,
                                         const MSettingReader& reader);
