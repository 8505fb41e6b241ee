// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MXML.h"
#include "plugin/presets/MPresetTree.h"

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

/// Presets as XML elements:
///
///     <folder name="Dub">
///       <preset name="Tape echo" author="" tags="dub, tape" comment="" favourite="0">
///         <settings .../>
///
/// Whatever else stands there is neither read nor touched.
namespace MPresetFile {

/// The names of the elements.
inline constexpr std::string_view kFolder = "folder";
inline constexpr std::string_view kPreset = "preset";

/// Reads what is below an element: folders up to 16 deep, and every preset that has a name and a
/// content; of several with the same name the first. [main]
MPresetFolder ReadFolder(const MXMLNode& element);
/// Throws MException when the element is no preset. [main]
MPreset ReadPreset(const MXMLNode& element);
/// Writes over what the element says of a preset. Throws MException when the content is no XML.
/// [main]
void WritePreset(MXMLNode element, const MPreset& preset);

/// The folder of that path below `element`; null when it is not there, or made on the way. [main]
MXMLNode FindFolder(MXMLNode element, std::span<const std::string> names);
MXMLNode MakeFolder(MXMLNode element, std::span<const std::string> names);
/// The child of a folder by name and kind, kPreset or kFolder; null when there is none. [main]
MXMLNode FindChild(const MXMLNode& folder, std::string_view kind, std::string_view name);

/// Reads one preset from a file of its own. A bare state is taken as well; it goes by the name of
/// the file. Throws MException when it is neither. [main]
MPreset Import(const std::filesystem::path& file);
/// Writes one preset into a file of its own. Throws MException. [main]
void Export(const std::filesystem::path& file, const MPreset& preset);

}  // namespace MPresetFile
