// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/MTransport.h"
#include "plugin/parameters/ParameterDefinition.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>

/// One parameter of a processor and what the user knows it by.
struct MRenderParameter {
    std::string key;          ///< the stable, short one of a host's list, such as "B1 T1 Feedback"
    std::string name;         ///< the long one, such as "Band 1 - Tap 1 - Feedback"
    int band = 0;             ///< without how many bands it means nothing; 0 when it always does
    bool isOfEffect = false;  ///< whether it is a setting of the band's effect
    const ParameterDefinition* record = nullptr;  ///< range, texts and present value; never null
};

/// Whatever turns blocks of audio into other blocks under parameters: the plug-in, or what a test
/// puts in its place. A render job knows no more of it than this. One thread only.
class MBlockProcessor {
public:
    MBlockProcessor() = default;
    virtual ~MBlockProcessor() = default;
    MBlockProcessor(const MBlockProcessor&) = delete;
    MBlockProcessor& operator=(const MBlockProcessor&) = delete;

    /// What may be set, each band's settings in the same order; valid as long as the processor.
    /// [main]
    virtual std::span<const MRenderParameter> Parameters() const = 0;
    /// How many bands sound. [main]
    virtual int BandCount() const = 0;
    /// Sets the parameter at `index` to `value` in its record's own units, from the next block on.
    /// [main]
    virtual void SetParameter(int index, double value) = 0;

    /// Readies the processor for 1..8 `channels` at `sampleRate` hertz, from silence. Throws
    /// MRenderFailure when it does not take them. [setup]
    virtual void Prepare(int channels, int sampleRate) = 0;
    /// Frames by which the output comes late, once prepared. [main]
    virtual int Latency() = 0;
    /// A MIDI message `frame` frames into the next block; a processor may have no use for it.
    /// [main]
    virtual void SendMIDI(int /*frame*/, const std::array<std::uint8_t, 4>& /*data*/) {}
    /// Runs one block, [channels][frames]; inputs and outputs never share memory. [main]
    virtual void Process(const MTransport& transport, const float* const* inputs,
                         float* const* outputs, int frames) = 0;
    /// Whether nothing is left inside that would sound on. [main]
    virtual bool IsTailSilent() = 0;
};
