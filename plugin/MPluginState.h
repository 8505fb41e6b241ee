// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class MAudioPlugin;

/// The whole plug-in as bytes: its state as XML text, deflated for hosts.
namespace MPluginState {

/// Root element of the tree.
inline constexpr std::string_view kRootName = "settings";
/// A state that inflates to more than this many bytes is refused.
inline constexpr std::size_t kLargestText = std::size_t{16} << 20;

/// The state as indented XML text. [main]
std::string SaveText(MAudioPlugin& plugin);
/// The same, deflated: what a host keeps. [main]
std::vector<std::uint8_t> Save(MAudioPlugin& plugin);

/// Loads what Save or SaveText gave, this version or an older one. The plug-in starts from its
/// defaults, so that a state always sounds the same. Throws MException, and nothing changes, for
/// bytes that are no state: "The XML does not contain any elements." or what the parser says. Any
/// other XML is taken for a state that says little; where it says nothing at all and is not named
/// as a state either, that is told by an MException once the plug-in is at its defaults. [main]
void Load(MAudioPlugin& plugin, std::span<const std::uint8_t> bytes);

/// Text to chunk and chunk (or text) to text. Throws MException for what cannot be read. [any]
std::vector<std::uint8_t> Compress(std::string_view text);
std::string Expand(std::span<const std::uint8_t> bytes);

}  // namespace MPluginState
