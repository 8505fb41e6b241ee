// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MAudioEffectPluginToAudioPluginAdapter.h"
#include "core/MException.h"
#include "core/MGuard.h"
#include "plugin/presets/MPluginPresetContent.h"

#include <algorithm>
#include <optional>

namespace {

using std::chrono::milliseconds;

// Two blocks, but no less than a busy machine may be late by.
milliseconds PatienceFor(int blockSize, int sampleRate) {
    const auto blocks = 2000LL * blockSize / std::max(sampleRate, 1);
    return std::clamp(milliseconds(blocks), milliseconds(10), milliseconds(100));
}

/// Whether `node` has a value for any of `records`.
bool HasAny(std::span<const ParameterDefinition> records, MXMLNode node) {
    return std::any_of(records.begin(), records.end(), [&](const ParameterDefinition& record) {
        return node.Attribute(record.key).has_value();
    });
}

}  // namespace

void MAudioEffectPluginToAudioPluginAdapter::Store(MXMLNode node, MArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::Store", [&] {
        TakeUserDefaults();
        std::optional<MStateHandOver::Ticket> ticket;
        {
            const MLock lock(changeLock_);
            isStageComplete_ = false;
            FillStage(archive.StartsFromDefaults() ? MArchive::Base::Defaults
                                                   : MArchive::Base::Current);
            StoreStandardSettings(node, archive);
            StoreLFO(node, archive);
            StoreMultiParameters(node, archive);
            StoreControllers(node, archive);
            StoreSettings(node, archive);
            spare_.reset();
            if (!archive.IsWriting() && isStageComplete_) ticket = Commit();
        }
        if (ticket) ActualiseAfterLoading(*ticket);
        if (ticket || archive.IsWriting()) StoreActivePresets(node, archive);
    });
}

void MAudioEffectPluginToAudioPluginAdapter::SetDefaults() {
    Guard("MAudioEffectPluginToAudioPluginAdapter::SetDefaults", [&] {
        TakeUserDefaults();
        MStateHandOver::Ticket ticket = 0;
        {
            const MLock lock(changeLock_);
            FillStage(MArchive::Base::Defaults);
            ticket = Commit();
        }
        ActualiseAfterLoading(ticket);
    });
}

void MAudioEffectPluginToAudioPluginAdapter::AddStateRecords(MStateRecords& records) {
    for (const auto& effect : effects_) records.Add(*effect);
    for (ParameterDefinition& record : modulation_.MultiParameterRecords()) records.Add(record);
    records.Add(bypass_);
}

void MAudioEffectPluginToAudioPluginAdapter::FillStage(MArchive::Base base) {
    const bool isCurrent = base == MArchive::Base::Current;
    stagedStandard_ = isCurrent ? standard_ : MStandardSettings();
    if (!isCurrent) stagedStandard_.version = Identity().versionNumber;
    stagedModulation_ = isCurrent ? modulation_.Settings() : MModulationSettings();
    stagedMIDI_ = isCurrent ? midi_.Settings() : MMIDISettings();
    stagedValues_ = isCurrent ? handOver_.Current() : stateRecords_.Defaults();
}

// Not staged like the rest: it says nothing about the sound, and takes the states of the other
// slots as they are.
void MAudioEffectPluginToAudioPluginAdapter::StoreActivePresets(MXMLNode node,
                                                                const MArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::StoreActivePresets",
          [&] { activePresets_.Store(node, archive); });
}

MStateHandOver::Ticket MAudioEffectPluginToAudioPluginAdapter::Commit() {
    MStateHandOver::Ticket ticket = 0;
    {
        MModulation::Replacement replacement(modulation_, stagedModulation_);
        newModulation_ = &replacement;
        ticket = CommitStage();
    }
    midi_.SetSettings(stagedMIDI_);
    return ticket;
}

MStateHandOver::Ticket MAudioEffectPluginToAudioPluginAdapter::CommitStage() {
    return handOver_.Publish(&stagedValues_, [&] { PublishStage(); });
}

void MAudioEffectPluginToAudioPluginAdapter::PublishStage() noexcept {
    standard_ = stagedStandard_;
    newModulation_->Publish();
}

void MAudioEffectPluginToAudioPluginAdapter::StoreStandardSettings(MXMLNode node,
                                                                   const MArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::StoreStandardSettings", [&] {
        if (archive.IsWriting()) stagedStandard_.version = Identity().versionNumber;
        stagedStandard_.Store(node, archive, ChannelsPerBus());
        StoreRecord(bypass_, node, archive);
    });
}

void MAudioEffectPluginToAudioPluginAdapter::StoreMultiParameters(MXMLNode node,
                                                                  const MArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::StoreMultiParameters", [&] {
        const MXMLNode list = archive.Child(node, "MultiParameters");
        int index = 0;
        for (const MXMLNode element :
             archive.Children(list, "MultiParameter", MModulation::kMultiParameters)) {
            StoreValue(modulation_.MultiParameterRecords()[index], "Value", element, archive);
            stagedModulation_.multiParameters[index++].Store(element, archive);
        }
    });
}

void MAudioEffectPluginToAudioPluginAdapter::StoreLFO(MXMLNode node, const MArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::StoreLFO",
          [&] { stagedModulation_.StoreModulators(archive.Child(node, "LFOs"), archive); });
}

void MAudioEffectPluginToAudioPluginAdapter::StoreControllers(MXMLNode node,
                                                              const MArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::StoreControllers", [&] {
        const bool isKept = !archive.IsWriting() && node.Attribute(MPluginPresetContent::kKeepMIDI);
        if (isKept) {
            stagedMIDI_ = midi_.Settings();
        } else {
            stagedMIDI_.Store(node, archive);
        }
    });
}

void MAudioEffectPluginToAudioPluginAdapter::StoreSettings(MXMLNode node, MArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::StoreSettings", [&] {
        if (archive.IsWriting()) {
            SaveEffect(0, node);
        } else {
            LoadEffect(0, node);
        }
        CompleteStage();
    });
}

void MAudioEffectPluginToAudioPluginAdapter::StoreRecord(const ParameterDefinition& record,
                                                         MXMLNode node, const MArchive& archive) {
    StoreValue(record, record.key, node, archive);
}

void MAudioEffectPluginToAudioPluginAdapter::StoreValue(const ParameterDefinition& record,
                                                        std::string_view key, MXMLNode node,
                                                        const MArchive& archive) {
    double& value = stateRecords_.Of(record, stagedValues_);
    archive.Number(node, key, value);
    if (!archive.IsWriting()) value = record.Nearest(value);
}

MEffectHandle& MAudioEffectPluginToAudioPluginAdapter::SpareLike(std::span<const double> values) {
    if (spare_ == nullptr) spare_ = std::make_unique<MEffectHandle>(entry_);
    const std::span<ParameterDefinition> records = spare_->Table();
    if (records.size() != values.size()) throw MException("Error creating plugin.");
    for (std::size_t i = 0; i < values.size(); ++i) records[i].SetValue(values[i]);
    return *spare_;
}

void MAudioEffectPluginToAudioPluginAdapter::SaveEffect(int index, MXMLNode node) {
    SpareLike(stateRecords_.Of(Effect(index), stagedValues_)).Save(node);
}

bool MAudioEffectPluginToAudioPluginAdapter::LoadEffect(int index, MXMLNode node) {
    const std::span<double> staged = stateRecords_.Of(Effect(index), stagedValues_);
    MEffectHandle& spare = SpareLike(staged);
    const std::span<ParameterDefinition> records = spare.Table();
    spare.Load(node);
    bool hasAny = HasAny(records, node);
    for (std::size_t i = 0; i < staged.size(); ++i) {
        const double value = records[i].Nearest(records[i].Value());
        hasAny = hasAny || value != staged[i];
        staged[i] = value;
    }
    return hasAny;
}

void MAudioEffectPluginToAudioPluginAdapter::ActualiseAfterLoading(MStateHandOver::Ticket ticket) {
    if (!handOver_.WaitUntilTaken(ticket, PatienceFor(MaximumBlockSize(), SampleRate()))) {
        const MLock lock(changeLock_);
        handOver_.TakeHere();
    }
    for (const auto& effect : effects_) effect->RequestRefresh();
    ReportLatencyChange();
    ReportParameterChanges();
}

MStandardSettings MAudioEffectPluginToAudioPluginAdapter::StandardSettings() {
    const MLock lock(changeLock_);
    return standard_;
}

void MAudioEffectPluginToAudioPluginAdapter::SetStandardSettings(
    const MStandardSettings& settings) {
    const MLock lock(changeLock_);
    handOver_.Publish(nullptr, [&] { standard_ = settings; });
}
