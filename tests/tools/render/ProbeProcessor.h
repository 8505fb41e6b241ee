// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/MEffectHandle.h"
#include "tests/support/ProbeEffect.h"
#include "tools/render/MBlockProcessor.h"
#include "tools/render/MRenderFailure.h"

#include <algorithm>
#include <cstddef>
#include <vector>

/// The probe effect as the processor of a render: no bands, and as late as a test wants it.
class ProbeProcessor : public MBlockProcessor {
public:
    explicit ProbeProcessor(const ProbeEffect::Script& script = {}, int latency = 0)
        : effect_(ProbeEffect::Reset(script)), latency_(latency) {
        for (const ParameterDefinition& record : effect_.Table()) {
            parameters_.push_back({record.key, record.name, 0, false, &record});
        }
    }

    std::span<const MRenderParameter> Parameters() const override { return parameters_; }
    int BandCount() const override { return 1; }
    void SetParameter(int index, double value) override {
        effect_.Table()[static_cast<std::size_t>(index)].SetValue(value);
    }
    void Prepare(int channels, int sampleRate) override {
        if (effect_.Prepare(channels, sampleRate) != 0) {
            throw MRenderFailure(MExitCode::Processing, "the probe does not take them");
        }
        underWay_.assign(static_cast<std::size_t>(channels),
                         std::vector<float>(static_cast<std::size_t>(latency_)));
    }
    int Latency() override { return latency_; }
    void Process(const MTransport& transport, const float* const* inputs, float* const* outputs,
                 int frames) override {
        effect_.Process(&transport, inputs, outputs, frames);
        for (std::size_t channel = 0; channel < underWay_.size(); ++channel) {
            std::vector<float>& late = underWay_[channel];
            late.insert(late.end(), outputs[channel], outputs[channel] + frames);
            std::copy_n(late.begin(), frames, outputs[channel]);
            late.erase(late.begin(), late.begin() + frames);
        }
    }
    bool IsTailSilent() override { return effect_.IsTailSilent(); }

private:
    MEffectHandle effect_;
    std::vector<MRenderParameter> parameters_;
    int latency_;
    std::vector<std::vector<float>> underWay_;  // [channels][latency]
};
