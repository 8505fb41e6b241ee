// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MUserFolders.h"

#include "core/MException.h"

#ifdef _WIN32
// clang-format off
#include <windows.h>  // needed by the others
// clang-format on
#include <knownfolders.h>
#include <shlobj.h>
#else
#include <cstdlib>
#endif

namespace {

#ifdef _WIN32

std::filesystem::path RoamingData() {
    PWSTR found = nullptr;
    // Not verified: whoever only wants to know its name shall not touch the disc.
    const HRESULT result =
        SHGetKnownFolderPath(FOLDERID_RoamingAppData, KF_FLAG_DONT_VERIFY, nullptr, &found);
    std::filesystem::path folder;
    if (SUCCEEDED(result)) folder = found;
    CoTaskMemFree(found);
    if (folder.empty()) throw MException("The folder of the user's settings is unknown.");
    return folder;
}

#else

/// The folder that `variable` names or, without it, `fallback` in the user's home. Relative
/// folders are to be ignored, as XDG asks.
std::filesystem::path BaseFolder(const char* variable, const char* fallback) {
    for (const auto& [name, rest] : {std::pair{variable, ""}, std::pair{"HOME", fallback}}) {
        const char* const value = std::getenv(name);
        if (value == nullptr) continue;
        const std::filesystem::path folder(value);
        if (folder.is_absolute()) return *rest == '\0' ? folder : folder / rest;
    }
    throw MException("The folder of the user's settings is unknown.");
}

#endif

}  // namespace

#ifdef _WIN32
std::filesystem::path MUserFolders::Configuration() { return RoamingData(); }
std::filesystem::path MUserFolders::Data() { return RoamingData(); }
#else
std::filesystem::path MUserFolders::Configuration() {
    return BaseFolder("XDG_CONFIG_HOME", ".config");
}
std::filesystem::path MUserFolders::Data() { return BaseFolder("XDG_DATA_HOME", ".local/share"); }
#endif
