// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MAudioEffectPluginToAudioPluginAdapter.h"

#include "adapters/effect/MBlockPieces.h"
#include "core/MException.h"
#include "core/MGuard.h"

#include <algorithm>
#include <chrono>

namespace {

// Longer than any block; a host that holds up its audio thread for longer has stopped it.
constexpr std::chrono::milliseconds kLockTimeOut{2000};

}  // namespace

MAudioEffectPluginToAudioPluginAdapter::MAudioEffectPluginToAudioPluginAdapter(
    const MEffectAdapterParts& parts)
    : MAudioPlugin(parts.identity),
      settings_(parts.settings != nullptr ? *parts.settings : ownSettings_),
      entry_(parts.entry),
      panelShortNames_(parts.panelShortNames),
      midi_(*this, parts.presets),
      presetTriggers_(parts.presets),
      presets_(parts.presets) {
    bypass_.DefineBool("Bypass", "Bypass", false);
    standard_.version = parts.identity.versionNumber;
}

MAudioEffectPluginToAudioPluginAdapter::~MAudioEffectPluginToAudioPluginAdapter() = default;

bool MAudioEffectPluginToAudioPluginAdapter::Initialize() {
    return Guard("MAudioEffectPluginToAudioPluginAdapter::Initialize", false, [&] {
        CreateEffects({"Effect"});
        MParameterTable table(MutableParameters());
        AddParameters(table);
        AddStateRecords(stateRecords_);
        return true;
    });
}

void MAudioEffectPluginToAudioPluginAdapter::CreateEffects(const std::vector<std::string>& names) {
    try {
        for (const std::string& name : names) {
            effects_.push_back(std::make_unique<MHostedEffect>(entry_, name));
        }
    } catch (const MException&) {
        effects_.clear();
        throw MException("Error creating plugin.");
    }
}

void MAudioEffectPluginToAudioPluginAdapter::AddParameters(MParameterTable& table) {
    for (const auto& effect : effects_) {
        table.AddEffect(effect->Records(), "", "", panelShortNames_, effect.get());
    }
    AddSharedParameters(table);
}

void MAudioEffectPluginToAudioPluginAdapter::AddSharedParameters(MParameterTable& table) {
    modulation_.AddParameters(table);
    presetTriggers_.AddParameters(table);
    table.Add(bypass_, "Bypass", "Bypass");
    modulation_.Bind(Parameters(), effects_);
}

bool MAudioEffectPluginToAudioPluginAdapter::InitProcessing() {
    return Guard("MAudioEffectPluginToAudioPluginAdapter::InitProcessing", false, [&] {
        const bool isUsed = !IsScanned();
        if (isUsed) TakeUserDefaults();
        {
            const MLock lock(processingLock_, kLockTimeOut);
            if (!InitProcessing_LockedPart()) return false;
        }
        InitProcessing_UnLockedPart();
        InitProcessingGUI();
        if (presets_ != nullptr && isUsed) {
            Guard("MAudioEffectPluginToAudioPluginAdapter::InitProcessing",
                  [&] { presets_->Start(); });
        }
        return true;
    });
}

void MAudioEffectPluginToAudioPluginAdapter::ReportMovedParameters() {
    Guard("MAudioEffectPluginToAudioPluginAdapter::ReportMovedParameters", [&] {
        midi_.ReportMoved();
        presetTriggers_.ReportReleased(*this);
        // What a MultiParameter moves is no gesture of its own: the host has the knob's.
        if (TakeParameterListChanged()) ReportParameterChanges();
    });
}

void MAudioEffectPluginToAudioPluginAdapter::EndBackgroundWork() {
    Guard("MAudioEffectPluginToAudioPluginAdapter::EndBackgroundWork", [&] {
        if (presets_ != nullptr) presets_->Stop();
    });
}

bool MAudioEffectPluginToAudioPluginAdapter::InitProcessing_LockedPart() {
    return Guard("MAudioEffectPluginToAudioPluginAdapter::InitProcessing_LockedPart", false, [&] {
        if (effects_.empty()) throw MException("Error creating plugin.");
        isReady_ = false;  // blocks are silent should anything below fail
        {
            const MLock lock(changeLock_);
            handOver_.Start();
        }
        presetTriggers_.StartOver();
        midi_.Reset();  // it may move parameters, which all that follows reads
        activeLayout_ = BusLayout();
        activeRate_ = SampleRate();
        PrepareEffects();
        UpdateMaxBufferSize();
        bypassFade_.Prepare(activeLayout_.outputs, activeRate_, MaximumLatency(),
                            MaximumBlockSize(), bypass_.IsOn());
        modulation_.Prepare(activeRate_);
        inputMeter_.Prepare(activeRate_);
        outputMeter_.Prepare(activeRate_);
        isReady_ = true;
        return true;
    });
}

void MAudioEffectPluginToAudioPluginAdapter::InitProcessing_UnLockedPart() {
    Guard("MAudioEffectPluginToAudioPluginAdapter::InitProcessing_UnLockedPart",
          [&] { ReportLatencyChange(); });
}

void MAudioEffectPluginToAudioPluginAdapter::InitProcessingGUI() {
    Guard("MAudioEffectPluginToAudioPluginAdapter::InitProcessingGUI", [&] {
        for (const auto& effect : effects_) effect->RequestRefresh();
    });
}

void MAudioEffectPluginToAudioPluginAdapter::UpdateMaxBufferSize() {
    channels_.Reserve(activeLayout_.outputs, MaximumBlockSize());
}

void MAudioEffectPluginToAudioPluginAdapter::PrepareEffects() {
    for (const auto& effect : effects_) {
        effect->Prepare(activeLayout_.outputs, activeRate_, MaximumBlockSize());
    }
    MEffectHandle& first = effects_.front()->Handle();
    SetLatency(first.Latency(), std::max(first.TailLength(), -1));
}

void MAudioEffectPluginToAudioPluginAdapter::SetLatency(int latency, int tailLength) noexcept {
    latency_.store(latency, std::memory_order_relaxed);
    tailLength_.store(tailLength, std::memory_order_relaxed);
}

int MAudioEffectPluginToAudioPluginAdapter::GetLatency() const noexcept {
    return latency_.load(std::memory_order_relaxed);
}

int MAudioEffectPluginToAudioPluginAdapter::GetTailLength() const noexcept {
    return tailLength_.load(std::memory_order_relaxed);
}

int MAudioEffectPluginToAudioPluginAdapter::ProcessingLatency() const noexcept {
    return GetLatency();
}

int MAudioEffectPluginToAudioPluginAdapter::MaximumLatency() const noexcept { return GetLatency(); }

bool MAudioEffectPluginToAudioPluginAdapter::TakeParameterListChanged() noexcept {
    bool isChanged = modulation_.TakeKnobsMoved();
    for (const auto& effect : effects_) isChanged = effect->TakeListChanged() || isChanged;
    return isChanged;
}
