// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MFileContents.h"

#include "core/MFormat.h"
#include "tools/render/MRenderFailure.h"

#include <cerrno>
#include <fstream>
#include <sstream>
#include <system_error>

std::string MReadFileContents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const bool isFolder = std::filesystem::is_directory(path);
    if (!file || isFolder) {
        FailFile(MFormat("cannot read {0}: {1}", path.string(),
                         std::generic_category().message(isFolder ? EISDIR : errno)));
    }
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}
