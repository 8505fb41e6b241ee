// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandOperations.h"

#include "core/MFormat.h"

bool MBandOperations::Confirm(const std::string& question) {
    const bool asks = plugin_.Settings().Get(MSettingKeys::kShowConfirmations, 1) != 0;
    return !asks || confirmation_.Ask(question);
}

bool MBandOperations::ResetBandSettings() {
    if (!Confirm("Are you sure you want to reset the band settings?")) return false;
    plugin_.CreateDefaultBands(plugin_.Layout().bandCount);
    return true;
}

bool MBandOperations::CreateDefaultBands(int count) {
    MBandLayout::CheckBandCount(count);
    if (!Confirm(MFormat("Are you sure you want to clear current band settings and create {0} "
                         "default bands?",
                         count))) {
        return false;
    }
    plugin_.CreateDefaultBands(count);
    return true;
}

bool MBandOperations::ResetGains() {
    if (!Confirm("Are you sure you want to reset gain of all bands?")) return false;
    plugin_.ChangeBandParameters([](MBandParameters& parameters) {
        for (int band = 0; band < MBandLayout::kMaxBands; ++band) parameters.Gain(band).Overrule(0);
    });
    return true;
}

bool MBandOperations::ResetPanorama() {
    if (!Confirm("Are you sure you want to reset panorama of all bands?")) return false;
    plugin_.ChangeBandParameters([](MBandParameters& parameters) {
        for (int band = 0; band < MBandLayout::kMaxBands; ++band) {
            parameters.Panorama(band).Overrule(0);
        }
    });
    return true;
}

void MBandOperations::ResetBand(int band) {
    plugin_.Layout().CheckBand(band);
    const bool isPanorama = plugin_.Options().editsPanorama;
    plugin_.ChangeBandParameters([&](MBandParameters& parameters) {
        (isPanorama ? parameters.Panorama(band) : parameters.Gain(band)).Overrule(0);
    });
}
