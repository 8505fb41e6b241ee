// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The effects of all bands, as the band loop runs them.
class MBandEffects {
public:
    virtual ~MBandEffects() = default;

    /// Runs the effect of `band` over one whole block. `inputs` and `outputs` are [channels][count]
    /// with as many channels as the band processor was prepared for, and do not overlap. The
    /// outputs are not cleared: the effect writes every sample. What it throws ends the block.
    /// [audio]
    virtual void ProcessBand(int band, const float* const* inputs, float* const* outputs,
                             int count) = 0;
};
