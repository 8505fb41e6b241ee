// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MPluginState.h"

#include "core/MException.h"
#include "core/MFormat.h"
#include "core/MMemoryStream.h"
#include "core/MXML.h"
#include "core/MZLibStream.h"
#include "plugin/MArchive.h"
#include "plugin/MAudioPlugin.h"

#include <array>

namespace {

std::span<const std::uint8_t> BytesOf(std::string_view text) {
    // Text is bytes to a stream.
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string ReadAll(MStream& stream) {
    std::string text;
    std::array<std::uint8_t, 4096> piece{};
    for (std::size_t count = piece.size(); count == piece.size();) {
        count = stream.Read(piece);
        if (text.size() + count > MPluginState::kLargestText) {
            throw MException("The state is too large.");
        }
        text.append(piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
    }
    return text;
}

}  // namespace

std::string MPluginState::SaveText(MAudioPlugin& plugin) {
    MXMLTree tree(kRootName);
    MArchive archive(MArchive::Direction::Write);
    plugin.Store(tree.Root(), archive);
    return tree.Write();
}

std::vector<std::uint8_t> MPluginState::Save(MAudioPlugin& plugin) {
    return Compress(SaveText(plugin));
}

void MPluginState::Load(MAudioPlugin& plugin, std::span<const std::uint8_t> bytes) {
    const MXMLTree tree = MXMLTree::Parse(Expand(bytes));
    MArchive archive(MArchive::Direction::Read, MArchive::Base::Defaults);
    plugin.Store(tree.Root(), archive);
    const std::string name = tree.Root().Name();
    if (name == kRootName || archive.HasFound()) return;
    throw MException(MFormat("<{0}> holds no settings of the plug-in.", name));
}

std::vector<std::uint8_t> MPluginState::Compress(std::string_view text) {
    MMemoryStream bytes;
    MZLibStream deflating(bytes);
    deflating.Write(BytesOf(text));
    deflating.Finish();
    return bytes.Take();
}

// What does not inflate is taken for plain text: states may be written by hand. The exception is
// damaged data, which is known by its header: it had better be called what it is.
std::string MPluginState::Expand(std::span<const std::uint8_t> bytes) {
    MMemoryStream stream(bytes);
    try {
        MZLibStream inflating(stream, kLargestText);
        return ReadAll(inflating);
    } catch (const MException&) {
        if (MZLibStream::HasHeader(bytes)) throw;
    }
    stream.Rewind();
    return ReadAll(stream);
}
