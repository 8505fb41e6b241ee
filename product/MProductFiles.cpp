// SPDX-License-Identifier: GPL-3.0-or-later
#include "product/MProductFiles.h"

#include "adapters/multiband/MBandPresetContent.h"
#include "core/MException.h"
#include "core/MUserFolders.h"
#include "plugin/presets/MFileSettings.h"
#include "plugin/presets/MPluginPresetContent.h"
#include "product/MFactoryPresets.h"
#include "product/MProduct.h"

namespace {

/// The product's folder within one of the platform's; empty without such a folder.
std::filesystem::path OwnFolder(std::filesystem::path (*base)()) {
    try {
        return base() / MProduct::kIdentity.vendor / MProduct::kIdentity.name;
    } catch (const MException&) {
        return {};
    }
}

std::filesystem::path PresetFile() {
    const std::filesystem::path folder = OwnFolder(&MUserFolders::Data);
    return folder.empty() ? folder : folder / "presets.xml";
}

}  // namespace

std::unique_ptr<MSettings> MProductFiles::MakeSettings() {
    const std::filesystem::path folder = OwnFolder(&MUserFolders::Configuration);
    if (folder.empty()) return std::make_unique<MMemorySettings>();
    return std::make_unique<MFileSettings>(folder);
}

std::unique_ptr<MPresetLibrary> MProductFiles::MakePresets() {
    return std::make_unique<MPresetLibrary>(PresetFile(), MPluginPresetContent::kCategory,
                                            &MFactoryPresets::Text);
}

std::unique_ptr<MPresetLibrary> MProductFiles::MakeBandPresets() {
    return std::make_unique<MPresetLibrary>(PresetFile(), MBandPresetContent::kCategory);
}
