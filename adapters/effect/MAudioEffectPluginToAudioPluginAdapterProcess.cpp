// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MAudioEffectPluginToAudioPluginAdapter.h"
#include "core/MGuard.h"
#include "dsp/MDenormals.h"

#include <algorithm>

void MAudioEffectPluginToAudioPluginAdapter::Process(const float* const* inputs,
                                                     float* const* outputs, int sampleCount) {
    // A failing effect ends its block and no more: what it throws says nothing that a user could
    // act on.
    Guard<MExceptionPolicy::Swallow>("MAudioEffectPluginToAudioPluginAdapter::Process", [&] {
        const MTryLock lock(processingLock_);
        if (!lock || !isReady_) {
            Silence(outputs, sampleCount);
            return;
        }
        const MFlushDenormals flush;
        RunFrame(inputs, outputs, sampleCount);
    });
}

void MAudioEffectPluginToAudioPluginAdapter::RunFrame(const float* const* inputs,
                                                      float* const* outputs, int sampleCount) {
    const int count = std::max(sampleCount, 0);
    channels_.Take(activeLayout_, inputs, outputs, count);
    const float* const* const in = channels_.Inputs();
    float* const* const out = channels_.Outputs();

    PrepareForProcessingOnce(in, count);
    if (updates_.load(std::memory_order_relaxed)) ProcessUpdate();
    if (count == 0) return;

    const bool isBypassHeard = bypassFade_.Begin(bypass_.IsOn(), ProcessingLatency(), in, count);
    ProcessBlock(in, out, count);
    if (isBypassHeard) {
        if (bypassFade_.IsStarting()) StartBypassed();
        for (int channel = 0; channel < activeLayout_.outputs; ++channel) {
            ProcessBypassed(bypassFade_.Signals()[channel], count, channel);
        }
        bypassFade_.Mix(out, count);
    }
    PostProcess(out, count);
}

void MAudioEffectPluginToAudioPluginAdapter::PrepareForProcessing(const float* const* inputs,
                                                                  int sampleCount) {
    const MTryLock lock(processingLock_);
    if (lock) PrepareForProcessingOnce(inputs, sampleCount);
}

// What moves parameters belongs here, before the effect reads them.
void MAudioEffectPluginToAudioPluginAdapter::PrepareForProcessingOnce(const float* const* inputs,
                                                                      int sampleCount) {
    Guard<MExceptionPolicy::Swallow>(
        "MAudioEffectPluginToAudioPluginAdapter::PrepareForProcessing", [&] {
            presetTriggers_.Run();
            if (inputs != nullptr && IsMetering()) {
                inputMeter_.Feed(inputs, activeLayout_.outputs, sampleCount);
            }
        });
}

void MAudioEffectPluginToAudioPluginAdapter::ProcessUpdate() {
    Guard<MExceptionPolicy::Swallow>("MAudioEffectPluginToAudioPluginAdapter::ProcessUpdate", [&] {
        for (const auto& effect : effects_) effect->Update();
    });
}

void MAudioEffectPluginToAudioPluginAdapter::ProcessBlock(const float* const* inputs,
                                                          float* const* outputs, int sampleCount) {
    effects_.front()->Process(&Transport(), inputs, outputs, sampleCount);
}

void MAudioEffectPluginToAudioPluginAdapter::ProcessBypassed(float* /*channelBuffer*/,
                                                             int /*sampleCount*/, int /*channel*/) {
}

void MAudioEffectPluginToAudioPluginAdapter::StartBypassed() {}

void MAudioEffectPluginToAudioPluginAdapter::PostProcess(float* const* outputs, int sampleCount) {
    if (IsMetering()) outputMeter_.Feed(outputs, activeLayout_.outputs, sampleCount);
}

void MAudioEffectPluginToAudioPluginAdapter::Silence(float* const* outputs,
                                                     int sampleCount) const noexcept {
    if (outputs == nullptr || sampleCount <= 0) return;
    for (int channel = 0; channel < OutputChannelCount(); ++channel) {
        if (outputs[channel] != nullptr) std::fill_n(outputs[channel], sampleCount, 0.0f);
    }
}
