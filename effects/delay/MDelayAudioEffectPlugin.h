// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effects/delay/MDelayEngine.h"
#include "effects/delay/MDelayParameters.h"
#include "plugin/MAudioEffectPlugin.h"

/// The two-tap delay as an effect object: its records, its engine and the lock between them.
class MDelayAudioEffectPlugin final : public MAudioEffectPlugin {
public:
    MDelayAudioEffectPlugin();

    std::int64_t Dispatch(MEffectCommand command, const MEffectArguments* arguments) override;
    void UpdateProcessing() override;
    /// Reads the records by key, then the keys of older versions. [main]
    bool LoadParameters(MXMLNode state) override;
    int InitEffectProcessing(std::int64_t channels, std::int64_t sampleRate) override;
    void ProcessEffect(const MTransport* transport, const float* const* inputs,
                       float* const* outputs, int count) override;
    bool IsTailSilent() override;
    /// The lines of taps that are switched on and have none yet. Made without the lock. [main]
    void ReserveFor(std::span<const double> values) override;

private:
    void Reserve(const MDelaySettings& settings);
    bool ArePresent(const float* const* inputs, float* const* outputs) const noexcept;
    void LoadLegacyKeys(const MXMLNode& state);
    void LoadLegacyIndex(const MXMLNode& state, const char* key, int record);

    MDelayParameters parameters_;
    MDelayEngine engine_;
    int longestBlock_ = 0;  // samples, that was announced
};
