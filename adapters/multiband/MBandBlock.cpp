// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandBlock.h"

namespace {

double GainAt(double wet, double bandGain, bool wetAffectsGain) noexcept {
    return wetAffectsGain ? wet * bandGain + (1 - wet) : bandGain;
}

}  // namespace

MRampEnds MBandBlock::BandGain(int band) const noexcept {
    const MRampEnds& gain = bands[band].gain;
    return {GainAt(wet.from, gain.from, wetAffectsGain) * inputGain.from,
            GainAt(wet.to, gain.to, wetAffectsGain) * inputGain.to};
}

MRampEnds MBandBlock::BandPanorama(int band) const noexcept {
    const MRampEnds& panorama = bands[band].panorama;
    const double share = wetAffectsPanorama ? wet.from : 1;
    return {share * panorama.from, share * panorama.to};
}

void MBandBlock::Arrive() noexcept {
    for (MRampEnds* ends : {&inputGain, &outputGain, &wet, &dry}) ends->from = ends->to;
    for (MBandSettings& band : bands) {
        band.gain.from = band.gain.to;
        band.panorama.from = band.panorama.to;
    }
}
