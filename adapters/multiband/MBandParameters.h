// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/effect/MParameterTable.h"
#include "adapters/effect/MStateRecords.h"
#include "adapters/multiband/MBandBlock.h"
#include "dsp/kernels/MKernelSet.h"
#include "plugin/parameters/ParameterDefinition.h"

#include <array>
#include <span>

/// Buttons that hold wet or dry at one end, whatever the parameter says; full wins over off.
struct MForcedMix {
    bool off = false;
    bool full = false;
};

/// The automatable parameters of the band layer: wet and dry, gains in decibels, band limits as
/// log10 of hertz, panoramas from -1 to 1. Values may be written by any thread at any time.
class MBandParameters {
public:
    static constexpr int kLimits = kMaxCrossoverBands - 1;
    /// Limits of the bands, log10 of hertz.
    using Limits = std::array<double, kLimits>;

    MBandParameters();

    /// Adds wet, dry, gains, limits, band gains and panoramas, in this order. [setup]
    void AddParameters(MParameterTable& table);

    /// The same records, for the state. [setup]
    void AddStateRecords(MStateRecords& records);

    ParameterDefinition& Wet() noexcept { return wet_; }
    ParameterDefinition& Dry() noexcept { return dry_; }
    ParameterDefinition& InputGain() noexcept { return inputGain_; }
    ParameterDefinition& OutputGain() noexcept { return outputGain_; }
    /// `index` 0 to 4: between the bands `index` and `index` + 1.
    ParameterDefinition& Limit(int index) { return limits_.at(static_cast<std::size_t>(index)); }
    ParameterDefinition& Gain(int band) { return gains_.at(static_cast<std::size_t>(band)); }
    ParameterDefinition& Panorama(int band) {
        return panoramas_.at(static_cast<std::size_t>(band));
    }

    /// Every limit in force, within its range. [any]
    Limits ReadLimits() const noexcept;

    /// Sets where the gains, panoramas, wet and dry of `block` end. Bands from `bandCount` on stand
    /// at unity, in the middle. [audio]
    void ReadInto(MBandBlock& block, int bandCount, MForcedMix wet, MForcedMix dry) noexcept;

private:
    template <class Job>
    void ForEach(Job&& job);

    /// Levels as amplitudes, computed anew only when they have moved. Of the audio thread.
    struct Amplitudes {
        static constexpr int kCount = 8;  // whole vectors of the kernels
        alignas(64) std::array<double, kCount> decibels{};
        alignas(64) std::array<double, kCount> linear{1, 1, 1, 1, 1, 1, 1, 1};
    };
    void FollowGains(int bandCount) noexcept;

    ParameterDefinition wet_, dry_, inputGain_, outputGain_;
    std::array<ParameterDefinition, kLimits> limits_;
    std::array<ParameterDefinition, kMaxCrossoverBands> gains_;
    std::array<ParameterDefinition, kMaxCrossoverBands> panoramas_;
    // Every gain, in the order of the amplitudes: of the bands, the input, the output.
    const std::array<const ParameterDefinition*, Amplitudes::kCount> levels_;
    Amplitudes amplitudes_;
    const MControlKernels& kernels_ = *Kernels().controls;
};
