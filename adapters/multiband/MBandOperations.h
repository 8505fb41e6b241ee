// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"

#include <string>

/// Who answers a question on the user's behalf.
class MConfirmation {
public:
    /// Whether the user agrees. May wait for as long as it takes. [main]
    virtual bool Ask(const std::string& question) = 0;

protected:
    ~MConfirmation() = default;
};

/// What the editor offers to do with the bands. Whatever throws a setting of the user away asks
/// first, unless the setting "showconfirmations" is off. Each returns whether it was done.
class MBandOperations {
public:
    /// Both are borrowed. [main]
    MBandOperations(MAudioEffectPluginToAudioPluginMultiBandAdapter& plugin,
                    MConfirmation& confirmation) noexcept
        : plugin_(plugin), confirmation_(confirmation) {}

    /// Default bands, as many as there are. [main]
    bool ResetBandSettings();
    /// Default bands, `count` of them. Throws MException "Invalid number of bands." [main]
    bool CreateDefaultBands(int count);
    /// Every band gain to 0 dB. [main]
    bool ResetGains();
    /// Every panorama to the middle. [main]
    bool ResetPanorama();
    /// The gain of one band to 0 dB or, while panoramas are shown, its panorama to the middle.
    /// Throws MException "Index out of range." [main]
    void ResetBand(int band);

private:
    bool Confirm(const std::string& question);

    MAudioEffectPluginToAudioPluginMultiBandAdapter& plugin_;
    MConfirmation& confirmation_;
};
