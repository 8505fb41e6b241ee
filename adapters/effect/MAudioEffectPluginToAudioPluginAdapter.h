// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/effect/MBlockChannels.h"
#include "adapters/effect/MBypassFade.h"
#include "adapters/effect/MEffectAdapter.h"
#include "adapters/effect/MHostedEffect.h"
#include "adapters/effect/MParameterTable.h"
#include "adapters/effect/MPresetTriggers.h"
#include "adapters/effect/MStage.h"
#include "adapters/effect/MStandardSettings.h"
#include "adapters/effect/MStateHandOver.h"
#include "adapters/effect/MStateRecords.h"
#include "adapters/midi/MMIDIControl.h"
#include "adapters/modulation/MModulation.h"
#include "core/MMutex.h"
#include "dsp/MMeter.h"
#include "plugin/MAudioPlugin.h"
#include "plugin/presets/MActivePresets.h"
#include "plugin/presets/MRandomRule.h"
#include "plugin/presets/MSettings.h"

#include <array>
#include <atomic>
#include <memory>
#include <span>
#include <string>
#include <vector>

/// What an adapter is made of. Pointers are borrowed and outlive the adapter.
struct MEffectAdapterParts {
    MPluginIdentity identity;
    MEffectEntry entry = nullptr;                ///< makes the effect
    MPanelShortNames panelShortNames;            ///< for the host's list
    MSettings* settings = nullptr;               ///< null: settings of its own, in memory
    MPresetStepper* presets = nullptr;           ///< null: the preset triggers do nothing
    std::span<const MRandomRule> randomRules{};  ///< what makes random settings musical
};

/// Makes an effect object a complete plug-in: it owns the effect, gives its records to the host and
/// runs it block by block, with bypass, meters and MultiParameters around it.
///
/// The processing lock keeps InitProcessing and blocks apart. The audio thread only tries it: a
/// block that falls into an InitProcessing is silent. The change lock lets one thread at a time
/// change what consists of several parts; a state is read and made ready without it, and then
/// replaces everything under it. The audio thread gets the result through the hand-over, between
/// two blocks. Everything else crosses threads as single numbers. Order of the locks: processing,
/// change, then those of the hand-over and of classes that build on this one.
class MAudioEffectPluginToAudioPluginAdapter : public MAudioPlugin,
                                               public MEffectAdapter,
                                               private MMIDIListener {
public:
    /// [main]
    explicit MAudioEffectPluginToAudioPluginAdapter(const MEffectAdapterParts& parts);
    ~MAudioEffectPluginToAudioPluginAdapter() override;

    /// Creates the effects and the parameters; call it once, before anything else. False when an
    /// effect cannot be created ("Error creating plugin.", reported): the object is of no use then.
    /// [main]
    virtual bool Initialize();

    void Store(MXMLNode node, MArchive& archive) override;
    void SetDefaults() override;

    bool InitProcessing() override;
    void Process(const float* const* inputs, float* const* outputs, int sampleCount) override;
    void ProcessUpdate() override;
    void PostProcess(float* const* outputs, int sampleCount) override;
    bool ReceivesMIDI() const noexcept override { return true; }
    void ProcessMIDIEvent(int deltaFrames, const std::array<std::uint8_t, 4>& data) override;
    bool WantsHostTime() const noexcept override { return true; }
    void ReportMovedParameters() override;
    void EndBackgroundWork() override;
    int GetLatency() const noexcept override;
    int GetTailLength() const noexcept override;

    bool InitProcessing_LockedPart() override;
    void InitProcessing_UnLockedPart() override;
    void InitProcessingGUI() override;
    void UpdateMaxBufferSize() override;
    void PrepareForProcessing(const float* const* inputs, int sampleCount) override;
    void StoreSettings(MXMLNode node, MArchive& archive) override;

    /// The bypass switch, a parameter with the state key "Bypass". [any]
    ParameterDefinition& Bypass() noexcept { return bypass_; }
    /// Whether blocks begin with ProcessUpdate; on from the start. [any]
    void EnableProcessUpdate(bool on) noexcept { updates_.store(on, std::memory_order_relaxed); }

    /// Turns the meters on or off; off from the start, since nobody may look. [any]
    void SetMetering(bool on) noexcept { isMetering_.store(on, std::memory_order_relaxed); }
    /// What comes in and what goes out, bypass included. [any]
    const MMeter& InputMeter() const noexcept { return inputMeter_; }
    const MMeter& OutputMeter() const noexcept { return outputMeter_; }

    /// What is stored besides parameters, as it was last published. [main]
    MStandardSettings StandardSettings();
    /// Puts other ones into force. [main]
    void SetStandardSettings(const MStandardSettings& settings);
    /// The modulators and MultiParameters. [main]
    MModulation& Modulation() noexcept { return modulation_; }
    /// What MIDI messages do. [main]
    MMIDIControl& MIDI() noexcept { return midi_; }
    /// The states A to H that can be compared with one another. [main]
    MActivePresets& ActivePresets() noexcept { return activePresets_; }
    /// What followers may listen to besides the input, [channels][samples of the next block]; null,
    /// as at the start, for no side chain. Borrowed until the next call. [audio]
    void SetSideChain(const float* const* channels, int channelCount) noexcept;

    MSettings& Settings() noexcept { return settings_; }
    /// Effects of the plug-in, for the editor and the state. [any]
    int EffectCount() const noexcept { return static_cast<int>(effects_.size()); }
    MHostedEffect& Effect(int index) const { return *effects_.at(static_cast<std::size_t>(index)); }
    /// Whether records have been enabled or disabled, or moved by a MultiParameter, since the last
    /// call: the host's list and the editor should follow. [main]
    bool TakeParameterListChanged() noexcept;

protected:
    /// Throws MException "Error creating plugin." [main]
    void CreateEffects(const std::vector<std::string>& names);
    /// Adds the plug-in's parameters in the order of their identifiers. [main]
    virtual void AddParameters(MParameterTable& table);
    /// MultiParameters, preset triggers and bypass, which every effect has. [main]
    void AddSharedParameters(MParameterTable& table);
    MPanelShortNames PanelShortNames() const noexcept { return panelShortNames_; }

    /// Puts into force what the user has set for new instances, once. It is not read before it
    /// matters, since a host that scans shall find no file touched: whoever uses what such a
    /// setting decides calls this first, without any lock. [main]
    virtual void TakeUserDefaults() {}

    /// Adds the records whose values belong to the state, once there are effects. [main]
    virtual void AddStateRecords(MStateRecords& records);
    /// One change at a time; never to be had by the audio thread.
    MMutex& ChangeLock() noexcept { return changeLock_; }
    /// Runs `change` under the change lock when no loaded values are under way, so that what it
    /// writes into records comes after them. [main]
    template <class Job>
    void WhenSettled(Job&& change) {
        bool isHung = false;
        for (;;) {
            {
                const MLock lock(changeLock_);
                if (handOver_.Settle(isHung)) {
                    change();
                    return;
                }
            }
            isHung = !handOver_.WaitForBlock();
        }
    }
    MStateHandOver& HandOver() noexcept { return handOver_; }
    const MStateRecords& StateRecords() const noexcept { return stateRecords_; }
    MStateRecords& MutableStateRecords() noexcept { return stateRecords_; }

    // A state passes through a stage, so that nothing changes until all of it has been read.
    /// An empty stage of the right kind. [main]
    virtual std::unique_ptr<MStage> MakeStage() const;
    /// Fills the stage with what is in force or with the defaults. [main]
    virtual void FillStage(MStage& stage, MArchive::Base base);
    /// Copies what is in force, under the change lock. [main]
    virtual void ReadIntoStage(MStage& stage);
    /// Makes everything ready that the stage needs before it can be committed; without any lock.
    /// [main]
    virtual void PrepareStage(MStage& stage);
    /// Makes the memory that the first `count` effects need for a staged state. [main]
    void ReserveEffects(MStage& stage, int count);
    /// Puts the stage into force, under the change lock. False when it has to be prepared again.
    /// [main]
    virtual bool CommitStage(MStage& stage);
    /// Hands the stage's values and `part` over, and what is this class's. [main]
    void PublishStage(MStage& stage, std::shared_ptr<MStateHandOver::Part> part);
    /// Writes or reads the staged value of `record`. [main]
    void StoreRecord(const ParameterDefinition& record, MXMLNode node,
                     const MStagingArchive& archive);
    /// Lets effect `index` write its staged values into `node`, by a spare object of its kind: its
    /// own records may just be changing. Throws what the effect throws. [main]
    void SaveEffect(int index, MXMLNode node, MStage& stage);
    /// Lets effect `index` read `node` into the stage, by a spare object of its kind, so that its
    /// own way with old states applies and nothing live is touched. False when the node has none of
    /// its values. Throws what the effect throws; the staged values are as before then. [main]
    bool LoadEffect(int index, MXMLNode node, MStage& stage);

    /// Adopts what was published. [audio]
    virtual void AdoptChanges(const MStateHandOver::Publication& published) noexcept;
    /// The standard settings of this block. [audio]
    const MStandardSettings& ActiveSettings() const noexcept { return activeStandard_; }
    /// Takes all values as where the last ramps ended. [audio]
    virtual void SettleRamps() noexcept;

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
    void RunLongBlock(const float* const* inputs, float* const* outputs, int sampleCount);
    void RunFrame(const float* const* inputs, float* const* outputs, int first, int count);
    void RunPieces(int first, int sampleCount);
    void NoteOn(int channel, int note, double velocity) noexcept override;
    void NoteOff(int channel, int note) noexcept override;
    void Modulate(const float* const* inputs, int place, int sampleCount) noexcept;
    bool HappensInPieces(int first, int count) const noexcept;
    void BeginBypass(int sampleCount);
    void Silence(float* const* outputs, int sampleCount) const noexcept;
    void Load(MStage& stage);
    bool TryCommit(MStage& stage);
    MEffectHandle& SpareLike(std::span<const double> values, MStage& stage);
    void StoreStandardSettings(MXMLNode node, const MStagingArchive& archive);
    void StoreLFO(MXMLNode node, const MStagingArchive& archive);
    void StoreControllers(MXMLNode node, const MStagingArchive& archive);
    void StoreActivePresets(MXMLNode node, const MArchive& archive);
    void StoreMultiParameters(MXMLNode node, const MStagingArchive& archive);
    void StoreValue(const ParameterDefinition& record, std::string_view key, MXMLNode node,
                    const MStagingArchive& archive);

    MMemorySettings ownSettings_;
    MSettings& settings_;
    const MEffectEntry entry_;
    const MPanelShortNames panelShortNames_;
    std::vector<std::unique_ptr<MHostedEffect>> effects_;

    MModulation modulation_;
    const float* const* sideChain_ = nullptr;  // of the audio thread
    int sideChainCount_ = 0;
    MMIDIControl midi_;
    MPresetTriggers presetTriggers_;
    ParameterDefinition bypass_;

    MPresetStepper* const presets_;
    MActivePresets activePresets_;

    MMutex changeLock_;           // over the next one and whatever changes values as a whole
    MStandardSettings standard_;  // as it was last published
    MStateRecords stateRecords_;  // constant once initialised
    MStateHandOver handOver_{stateRecords_};
    MStandardSettings activeStandard_;  // of the audio thread

    MMutex processingLock_;
    MBusLayout activeLayout_;
    int activeRate_ = 0;
    bool isReady_ = false;  // under the processing lock
    MBlockChannels channels_;
    MBypassFade bypassFade_;
    bool isBypassHeard_ = false;  // in this block

    std::atomic<bool> updates_{true};
    std::atomic<bool> isMetering_{false};
    std::atomic<int> latency_{0};     // samples
    std::atomic<int> tailLength_{0};  // samples, -1 without end
    MMeter inputMeter_;
    MMeter outputMeter_;
};
