// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MStateFile.h"

#include "core/MFormat.h"
#include "core/MText.h"
#include "core/MXML.h"
#include "plugin/MPluginState.h"
#include "plugin/presets/MPluginPresetContent.h"
#include "plugin/presets/MPresetFile.h"
#include "tools/render/MRenderFailure.h"
#include "tools/render/MTemporaryFile.h"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <vector>

namespace {

[[noreturn]] void Fail(const char* action, const std::filesystem::path& file,
                       const std::string& reason) {
    FailFile(MFormat("cannot {0} {1}: {2}", action, file.string(), reason));
}

std::vector<std::uint8_t> Read(const std::filesystem::path& file) {
    // No chunk is longer than its text.
    std::vector<std::uint8_t> bytes(MPluginState::kLargestText + 1);
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!stream.is_open() || stream.bad()) {
        Fail("read", file, std::generic_category().message(errno != 0 ? errno : EIO));
    }
    bytes.resize(static_cast<std::size_t>(stream.gcount()));
    return bytes;
}

bool IsCompressed(const std::filesystem::path& file) {
    const std::string extension = MText::ToLower(file.extension().string());
    return extension == ".chunk" || extension == ".bin";
}

}  // namespace

void MStateFile::Load(MAudioPlugin& plugin, const std::filesystem::path& file) {
    const std::vector<std::uint8_t> bytes = Read(file);
    try {
        const MXMLTree tree = MXMLTree::Parse(MPluginState::Expand(bytes));
        if (tree.Root().Name() == MPresetFile::kPreset) {
            MPluginPresetContent::Load(plugin, MPresetFile::ReadPreset(tree.Root()).content);
        } else {
            MPluginState::Load(plugin, bytes);
        }
    } catch (const MException& exception) {
        std::string reason = exception.Text();
        if (reason.ends_with('.')) reason.pop_back();
        Fail("read", file, reason);
    }
}

void MStateFile::Save(MAudioPlugin& plugin, const std::filesystem::path& file, bool overwrites) {
    std::error_code error;
    if (!overwrites && std::filesystem::exists(file, error)) {
        FailFile(MFormat("{0} exists; --overwrite replaces it", file.string()));
    }
    MTemporaryFile written(file);
    const std::string text = MPluginState::SaveText(plugin);
    std::ofstream stream(written.Path(), std::ios::binary);
    if (IsCompressed(file)) {
        const std::vector<std::uint8_t> chunk = MPluginState::Compress(text);
        stream.write(reinterpret_cast<const char*>(chunk.data()),
                     static_cast<std::streamsize>(chunk.size()));
    } else {
        stream << text;
    }
    stream.close();
    if (!stream) Fail("write", file, std::generic_category().message(errno != 0 ? errno : EIO));
    written.MoveIntoPlace();
}
