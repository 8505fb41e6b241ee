// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/effect/MBlockChannels.h"
#include "adapters/effect/MBypassFade.h"
#include "adapters/effect/MEffectAdapter.h"
#include "adapters/effect/MHostedEffect.h"
#include "adapters/effect/MParameterTable.h"
#include "adapters/effect/MPresetTriggers.h"
#include "core/MMutex.h"
#include "dsp/MMeter.h"
#include "plugin/MAudioPlugin.h"
#include "plugin/presets/MSettings.h"

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <vector>

/// What an adapter is made of. Pointers are borrowed and outlive the adapter.
struct MEffectAdapterParts {
    MPluginIdentity identity;
    MEffectEntry entry = nullptr;       ///< makes the effect
    MPanelShortNames panelShortNames;   ///< for the host's list
    MSettings* settings = nullptr;      ///< null: settings of its own, in memory
    MPresetStepper* presets = nullptr;  ///< null: the preset triggers do nothing
};

/// Makes an effect object a complete plug-in: it owns the effect, gives its records to the host and
/// runs it block by block, with bypass, meters and MultiParameters around it.
///
/// One lock, the processing lock, keeps InitProcessing and blocks apart. The audio thread only
/// tries it: a block that falls into an InitProcessing is silent. Everything else crosses threads
/// as single numbers.
class MAudioEffectPluginToAudioPluginAdapter : public MAudioPlugin, public MEffectAdapter {
public:
    static constexpr int kMultiParameters = 4;

    /// [main]
    explicit MAudioEffectPluginToAudioPluginAdapter(const MEffectAdapterParts& parts);
    ~MAudioEffectPluginToAudioPluginAdapter() override;

    /// Creates the effects and the parameters; call it once, before anything else. False when an
    /// effect cannot be created ("Error creating plugin.", reported): the object is of no use then.
    /// [main]
    virtual bool Initialize();

    bool InitProcessing() override;
    void Process(const float* const* inputs, float* const* outputs, int sampleCount) override;
    void ProcessUpdate() override;
    void PostProcess(float* const* outputs, int sampleCount) override;
    bool ReceivesMIDI() const noexcept override { return true; }
    bool WantsHostTime() const noexcept override { return true; }
    int GetLatency() const noexcept override;
    int GetTailLength() const noexcept override;

    bool InitProcessing_LockedPart() override;
    void InitProcessing_UnLockedPart() override;
    void InitProcessingGUI() override;
    void UpdateMaxBufferSize() override;
    void PrepareForProcessing(const float* const* inputs, int sampleCount) override;

    /// The bypass switch, a parameter with the state key "Bypass". [any]
    ParameterDefinition& Bypass() noexcept { return bypass_; }
    /// Whether blocks begin with ProcessUpdate; on from the start. [any]
    void EnableProcessUpdate(bool on) noexcept { updates_.store(on, std::memory_order_relaxed); }

    /// Turns the meters on or off; off from the start, since nobody may look. [any]
    void SetMetering(bool on) noexcept { isMetering_.store(on, std::memory_order_relaxed); }
    /// What comes in and what goes out, bypass included. [any]
    const MMeter& InputMeter() const noexcept { return inputMeter_; }
    const MMeter& OutputMeter() const noexcept { return outputMeter_; }

    MSettings& Settings() noexcept { return settings_; }
    /// Effects of the plug-in, for the editor and the state. [any]
    int EffectCount() const noexcept { return static_cast<int>(effects_.size()); }
    MHostedEffect& Effect(int index) const { return *effects_.at(static_cast<std::size_t>(index)); }
    /// Whether records have been enabled or disabled since the last call: the host's list and the
    /// editor should follow. [main]
    bool TakeParameterListChanged() noexcept;

protected:
    /// Throws MException "Error creating plugin." [main]
    void CreateEffects(const std::vector<std::string>& names);
    /// Adds the plug-in's parameters in the order of their identifiers. [main]
    virtual void AddParameters(MParameterTable& table);
    /// MultiParameters, preset triggers and bypass, which every effect has. [main]
    void AddSharedParameters(MParameterTable& table);
    MPanelShortNames PanelShortNames() const noexcept { return panelShortNames_; }

    /// Prepares the effects that run for the channels and rate of the next block. Throws. [main]
    virtual void PrepareEffects();
    /// Channels of a block, and its rate in hertz. Constant while the processing lock is held.
    const MBusLayout& ActiveLayout() const noexcept { return activeLayout_; }
    int ActiveRate() const noexcept { return activeRate_; }

    /// The effect's work on one block, [channels][sampleCount] of the active layout. [audio]
    virtual void ProcessBlock(const float* const* inputs, float* const* outputs, int sampleCount);
    /// Gives one channel of the bypassed signal the phase that the effect's dry signal has, in
    /// place. [audio]
    virtual void ProcessBypassed(float* channelBuffer, int sampleCount, int channel);
    /// ProcessBypassed starts anew after a pause. [audio]
    virtual void StartBypassed();
    /// How late the effect's output is in this block, in samples. [audio]
    virtual int ProcessingLatency() const noexcept;
    /// The largest that ProcessingLatency may become. [setup]
    virtual int MaximumLatency() const noexcept;

    bool IsMetering() const noexcept { return isMetering_.load(std::memory_order_relaxed); }
    void SetLatency(int latency, int tailLength) noexcept;

private:
    void PrepareForProcessingOnce(const float* const* inputs, int sampleCount);
    void RunFrame(const float* const* inputs, float* const* outputs, int sampleCount);
    void Silence(float* const* outputs, int sampleCount) const noexcept;

    MMemorySettings ownSettings_;
    MSettings& settings_;
    const MEffectEntry entry_;
    const MPanelShortNames panelShortNames_;
    std::vector<std::unique_ptr<MHostedEffect>> effects_;

    std::array<ParameterDefinition, kMultiParameters> multiParameters_;
    MPresetTriggers presetTriggers_;
    ParameterDefinition bypass_;

    MMutex processingLock_;
    MBusLayout activeLayout_;
    int activeRate_ = 0;
    bool isReady_ = false;  // under the processing lock
    MBlockChannels channels_;
    MBypassFade bypassFade_;

    std::atomic<bool> updates_{true};
    std::atomic<bool> isMetering_{false};
    std::atomic<int> latency_{0};     // samples
    std::atomic<int> tailLength_{0};  // samples, -1 without end
    MMeter inputMeter_;
    MMeter outputMeter_;
};
