// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MAudioEffectPluginToAudioPluginAdapter.h"
#include "core/MException.h"
#include "core/MGuard.h"
#include "plugin/presets/MPluginPresetContent.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace {

/// Loads `node` into `effect` over the bound `start` of every record and returns the values.
std::vector<double> LoadOver(double ParameterDefinition::*start, MEffectHandle& effect,
                             MXMLNode node) {
    for (ParameterDefinition& record : effect.Table()) record.SetValue(record.*start);
    effect.Load(node);
    std::vector<double> values;
    for (const ParameterDefinition& record : effect.Table()) values.push_back(record.Value());
    return values;
}

/// Whether `node` has a value for `effect`. The effect alone knows its old keys, and a value may
/// equal the default: what is the same over two different ones has come from the node.
bool HasAny(MEffectHandle& effect, MXMLNode node) {
    const std::span<const ParameterDefinition> records = effect.Table();
    const bool hasKey = std::any_of(records.begin(), records.end(), [&](const auto& record) {
        return node.Attribute(record.key).has_value();
    });
    if (hasKey) return true;
    const std::vector<double> low = LoadOver(&ParameterDefinition::minimum, effect, node);
    const std::vector<double> high = LoadOver(&ParameterDefinition::maximum, effect, node);
    return !std::equal(low.begin(), low.end(), high.begin(), std::not_equal_to<>());
}

}  // namespace

void MAudioEffectPluginToAudioPluginAdapter::Store(MXMLNode node, MArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::Store", [&] {
        TakeUserDefaults();
        const std::unique_ptr<MStage> stage = MakeStage();
        FillStage(*stage, archive.StartsFromDefaults() ? MArchive::Base::Defaults
                                                       : MArchive::Base::Current);
        MStagingArchive staging(archive, *stage);
        StoreStandardSettings(node, staging);
        StoreLFO(node, staging);
        StoreMultiParameters(node, staging);
        StoreControllers(node, staging);
        StoreSettings(node, staging);
        if (staging.HasFound()) archive.NoteFound();
        if (!archive.IsWriting()) {
            if (!stage->isComplete) return;
            Load(*stage);
        }
        StoreActivePresets(node, archive);
    });
}

void MAudioEffectPluginToAudioPluginAdapter::SetDefaults() {
    Guard("MAudioEffectPluginToAudioPluginAdapter::SetDefaults", [&] {
        TakeUserDefaults();
        const std::unique_ptr<MStage> stage = MakeStage();
        FillStage(*stage, MArchive::Base::Defaults);
        Load(*stage);
    });
}

// A state replaces everything, so it does not matter what others have changed since it was read.
void MAudioEffectPluginToAudioPluginAdapter::Load(MStage& stage) {
    do {
        PrepareStage(stage);
    } while (!TryCommit(stage));
    WhenSettled([] {});
    for (const auto& effect : effects_) effect->RequestRefresh();
    ReportLatencyChange();
    ReportParameterChanges();
}

void MAudioEffectPluginToAudioPluginAdapter::PrepareStage(MStage& stage) {
    ReserveEffects(stage, EffectCount());
}

void MAudioEffectPluginToAudioPluginAdapter::ReserveEffects(MStage& stage, int count) {
    for (int index = 0; index < count; ++index) {
        MHostedEffect& effect = Effect(index);
        effect.Handle().ReserveFor(stateRecords_.Of(effect, stage.values));
    }
}

bool MAudioEffectPluginToAudioPluginAdapter::TryCommit(MStage& stage) {
    const MLock lock(changeLock_);
    if (!CommitStage(stage)) return false;
    presetTriggers_.StartOver();
    if (stage.midi) midi_.SetSettings(*stage.midi);
    handOver_.Settle();
    return true;
}

void MAudioEffectPluginToAudioPluginAdapter::AddStateRecords(MStateRecords& records) {
    for (const auto& effect : effects_) records.Add(*effect);
    for (ParameterDefinition& record : modulation_.MultiParameterRecords()) records.Add(record);
    records.Add(bypass_);
}

std::unique_ptr<MStage> MAudioEffectPluginToAudioPluginAdapter::MakeStage() const {
    return std::make_unique<MStage>();
}

void MAudioEffectPluginToAudioPluginAdapter::FillStage(MStage& stage, MArchive::Base base) {
    if (base == MArchive::Base::Defaults) {
        stage.standard.version = Identity().versionNumber;
        stage.midi.emplace();
        stage.values = stateRecords_.Defaults();
        return;
    }
    const MLock lock(changeLock_);
    ReadIntoStage(stage);
}

void MAudioEffectPluginToAudioPluginAdapter::ReadIntoStage(MStage& stage) {
    stage.standard = standard_;
    stage.modulation = modulation_.Settings();
    stage.midi = midi_.Settings();
    stage.values = handOver_.Current();
}

// Not staged like the rest: it says nothing about the sound, and takes the states of the other
// slots as they are.
void MAudioEffectPluginToAudioPluginAdapter::StoreActivePresets(MXMLNode node,
                                                                const MArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::StoreActivePresets",
          [&] { activePresets_.Store(node, archive); });
}

bool MAudioEffectPluginToAudioPluginAdapter::CommitStage(MStage& stage) {
    PublishStage(stage, nullptr);
    return true;
}

void MAudioEffectPluginToAudioPluginAdapter::PublishStage(
    MStage& stage, std::shared_ptr<MStateHandOver::Part> part) {
    const MModulation::Replacement replacement(modulation_, stage.modulation);
    standard_ = stage.standard;
    stage.retired =
        handOver_.Publish(std::move(stage.values), [&](MStateHandOver::Publication& published) {
            published.standard = standard_;
            published.modulation = replacement.Plan();
            published.part = std::move(part);
        });
}

void MAudioEffectPluginToAudioPluginAdapter::StoreStandardSettings(MXMLNode node,
                                                                   const MStagingArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::StoreStandardSettings", [&] {
        MStandardSettings& standard = archive.Stage().standard;
        if (archive.IsWriting()) standard.version = Identity().versionNumber;
        standard.Store(node, archive, ChannelsPerBus());
        if (!archive.IsWriting() && node.Attribute(MPluginPresetContent::kKeepBypass)) {
            stateRecords_.Of(bypass_, archive.Stage().values) = MStateRecords::kKept;
        } else {
            StoreRecord(bypass_, node, archive);
        }
    });
}

void MAudioEffectPluginToAudioPluginAdapter::StoreMultiParameters(MXMLNode node,
                                                                  const MStagingArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::StoreMultiParameters", [&] {
        const MXMLNode list = archive.Child(node, "MultiParameters");
        int index = 0;
        for (const MXMLNode element :
             archive.Children(list, "MultiParameter", MModulation::kMultiParameters)) {
            StoreValue(modulation_.MultiParameterRecords()[index], "Value", element, archive);
            archive.Stage().modulation.multiParameters[index++].Store(element, archive);
        }
    });
}

void MAudioEffectPluginToAudioPluginAdapter::StoreLFO(MXMLNode node,
                                                      const MStagingArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::StoreLFO", [&] {
        archive.Stage().modulation.StoreModulators(archive.Child(node, "LFOs"), archive);
    });
}

void MAudioEffectPluginToAudioPluginAdapter::StoreControllers(MXMLNode node,
                                                              const MStagingArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::StoreControllers", [&] {
        const bool isKept = !archive.IsWriting() && node.Attribute(MPluginPresetContent::kKeepMIDI);
        std::optional<MMIDISettings>& settings = archive.Stage().midi;
        if (isKept) {
            settings.reset();
        } else if (settings) {
            settings->Store(node, archive);
        }
    });
}

void MAudioEffectPluginToAudioPluginAdapter::StoreSettings(MXMLNode node, MArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginAdapter::StoreSettings", [&] {
        MStage& stage = dynamic_cast<MStagingArchive&>(archive).Stage();
        if (archive.IsWriting()) {
            SaveEffect(0, node, stage);
        } else if (LoadEffect(0, node, stage)) {
            archive.NoteFound();
        }
        stage.isComplete = true;
    });
}

void MAudioEffectPluginToAudioPluginAdapter::StoreRecord(const ParameterDefinition& record,
                                                         MXMLNode node,
                                                         const MStagingArchive& archive) {
    StoreValue(record, record.key, node, archive);
}

void MAudioEffectPluginToAudioPluginAdapter::StoreValue(const ParameterDefinition& record,
                                                        std::string_view key, MXMLNode node,
                                                        const MStagingArchive& archive) {
    double& value = stateRecords_.Of(record, archive.Stage().values);
    archive.Number(node, key, value);
    if (!archive.IsWriting()) value = record.Nearest(value);
}

MEffectHandle& MAudioEffectPluginToAudioPluginAdapter::SpareLike(std::span<const double> values,
                                                                 MStage& stage) {
    if (stage.spare == nullptr) stage.spare = std::make_unique<MEffectHandle>(entry_);
    const std::span<ParameterDefinition> records = stage.spare->Table();
    if (records.size() != values.size()) throw MException("Error creating plugin.");
    for (std::size_t i = 0; i < values.size(); ++i) records[i].SetValue(values[i]);
    return *stage.spare;
}

void MAudioEffectPluginToAudioPluginAdapter::SaveEffect(int index, MXMLNode node, MStage& stage) {
    SpareLike(stateRecords_.Of(Effect(index), stage.values), stage).Save(node);
}

bool MAudioEffectPluginToAudioPluginAdapter::LoadEffect(int index, MXMLNode node, MStage& stage) {
    const std::span<double> staged = stateRecords_.Of(Effect(index), stage.values);
    MEffectHandle& spare = SpareLike(staged, stage);
    const std::span<ParameterDefinition> records = spare.Table();
    spare.Load(node);
    for (std::size_t i = 0; i < staged.size(); ++i) {
        staged[i] = records[i].Nearest(records[i].Value());
    }
    return HasAny(spare, node);
}

MStandardSettings MAudioEffectPluginToAudioPluginAdapter::StandardSettings() {
    const MLock lock(changeLock_);
    return standard_;
}

void MAudioEffectPluginToAudioPluginAdapter::SetStandardSettings(
    const MStandardSettings& settings) {
    const MLock lock(changeLock_);
    standard_ = settings;
    const auto retired = handOver_.Publish(
        [&](MStateHandOver::Publication& published) { published.standard = settings; });
}
