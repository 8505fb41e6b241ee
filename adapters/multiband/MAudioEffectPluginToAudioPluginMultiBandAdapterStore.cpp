// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"
#include "core/MException.h"
#include "core/MFailureReporter.h"
#include "core/MGuard.h"

#include <cmath>
#include <string>

namespace {

constexpr const char* kEffects =
    "MAudioEffectPluginToAudioPluginMultiBandAdapter::StoreSettings plugins";

std::string BandKey(int band) { return "band" + std::to_string(band); }

}  // namespace

void MAudioEffectPluginToAudioPluginMultiBandAdapter::AddStateRecords(MStateRecords& records) {
    parameters_.AddStateRecords(records);
    MAudioEffectPluginToAudioPluginAdapter::AddStateRecords(records);
}

std::unique_ptr<MStage> MAudioEffectPluginToAudioPluginMultiBandAdapter::MakeStage() const {
    return std::make_unique<Stage>();
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::FillStage(MStage& base,
                                                                MArchive::Base values) {
    auto& stage = static_cast<Stage&>(base);
    MAudioEffectPluginToAudioPluginAdapter::FillStage(stage, values);
    if (values == MArchive::Base::Current) return;
    // Not the user's own count for new instances: a state sounds the same on every machine.
    stage.layout.SetDefaults(MBandLayout::kDefaultBands);
    StageDefaultLimits(stage);
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::ReadIntoStage(MStage& base) {
    MAudioEffectPluginToAudioPluginAdapter::ReadIntoStage(base);
    auto& stage = static_cast<Stage&>(base);
    stage.layout = layout_;
    stage.options = options_;
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::StageDefaultLimits(Stage& stage) {
    int index = 0;
    for (const double hertz : MBandLayout::DefaultLimits(stage.layout.bandCount)) {
        StateRecords().Of(parameters_.Limit(index++), stage.values) = std::log10(hertz);
    }
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::PrepareStage(MStage& base) {
    auto& stage = static_cast<Stage&>(base);
    bool isPrepared = false;
    int sampleRate = 0;
    {
        const MLock lock(ChangeLock());
        isPrepared = AreBandsPrepared(stage.layout.bandCount);
        sampleRate = RateOfDesigns();
    }
    if (!isPrepared) {
        const MLock preparing(preparingLock_);
        PrepareBands(stage.layout.bandCount);
        sampleRate = RateOfDesigns();
    }
    ReserveEffects(stage, stage.layout.bandCount);
    stage.layout.DeriveSolo();
    stage.part = MakePart(stage.layout, stage.options, StagedLimits(stage), sampleRate);
}

bool MAudioEffectPluginToAudioPluginMultiBandAdapter::CommitStage(MStage& base) {
    auto& stage = static_cast<Stage&>(base);
    const bool isReady = AreBandsPrepared(stage.layout.bandCount) &&
                         stage.part->design->choice.sampleRate == RateOfDesigns();
    if (!isReady) return false;
    RestartReturningBands(stage.layout.bandCount);
    PublishStage(stage, stage.part);
    NotePublished(stage.part->inForce);
    {
        const MLock lock(settingsLock_);
        layout_ = stage.layout;
        options_ = stage.options;
    }
    isLegacyState_.store(stage.isLegacy, std::memory_order_relaxed);
    return true;
}

// A modulated limit stays where its modulator has it.
MBandParameters::Limits MAudioEffectPluginToAudioPluginMultiBandAdapter::StagedLimits(
    Stage& stage) {
    MBandParameters::Limits limits = parameters_.ReadLimits();
    for (int index = 0; index < MBandParameters::kLimits; ++index) {
        const ParameterDefinition& record = parameters_.Limit(index);
        if (record.IsRedirected()) continue;
        limits[index] = record.Nearest(StateRecords().Of(record, stage.values));
    }
    return limits;
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::StoreSettings(MXMLNode node,
                                                                    MArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginMultiBandAdapter::StoreSettings", [&] {
        const auto& staging = dynamic_cast<const MStagingArchive&>(archive);
        auto& stage = static_cast<Stage&>(staging.Stage());
        stage.options.Store(node, archive);
        StoreLayout(node, archive, stage);
        StoreBandParameters(node, staging, stage);
        if (archive.IsWriting()) {
            SaveBandEffects(node, stage);
        } else if (archive.Child(node, BandKey(0))) {
            LoadBandEffects(node, stage);
        } else {
            stage.isLegacy = true;
            LoadLegacyEffect(node, archive, stage);
        }
        stage.isComplete = true;
    });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::StoreLayout(MXMLNode node,
                                                                  const MArchive& archive,
                                                                  Stage& stage) {
    try {
        stage.layout.Store(node, archive);
    } catch (const MException& exception) {
        // The rest of the state is as good as any: only the bands stay as many as they are.
        const MBandLayout present = Layout();
        stage.layout.bandCount = present.bandCount;
        stage.layout.editedBand = present.editedBand;
        MFailureReporter::Report(exception.Text());
    }
    if (archive.StartsFromDefaults()) StageDefaultLimits(stage);
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::StoreBandParameters(
    MXMLNode node, const MStagingArchive& archive, const Stage& stage) {
    for (int band = 0; band < stage.layout.bandCount; ++band) {
        StoreRecord(parameters_.Gain(band), node, archive);
        StoreRecord(parameters_.Panorama(band), node, archive);
        if (band > 0) StoreRecord(parameters_.Limit(band - 1), node, archive);
    }
    StoreRecord(parameters_.Wet(), node, archive);
    StoreRecord(parameters_.Dry(), node, archive);
    StoreRecord(parameters_.InputGain(), node, archive);
    StoreRecord(parameters_.OutputGain(), node, archive);
}

// All six, whatever the count. Each for itself: one that fails takes nothing from the others.
void MAudioEffectPluginToAudioPluginMultiBandAdapter::SaveBandEffects(MXMLNode node, Stage& stage) {
    for (int band = 0; band < EffectCount(); ++band) {
        Guard(kEffects, [&] {
            MXMLNode child = node.AddChild(BandKey(band));
            SaveEffect(band, child, stage);
        });
    }
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::LoadBandEffects(MXMLNode node, Stage& stage) {
    for (int band = 0; band < EffectCount(); ++band) {
        Guard(kEffects, [&] {
            if (const MXMLNode child = node.Child(BandKey(band))) LoadEffect(band, child, stage);
        });
    }
}

// States from before there were bands keep the effect's values beside all others. Such a state is
// meant for one band, unless it says something else.
void MAudioEffectPluginToAudioPluginMultiBandAdapter::LoadLegacyEffect(MXMLNode node,
                                                                       const MArchive& archive,
                                                                       Stage& stage) {
    Guard(kEffects, [&] {
        const bool hasEffect = LoadEffect(0, node, stage);
        if (hasEffect) archive.NoteFound();
        if (!hasEffect || node.Attribute("BandCount")) return;
        stage.layout.bandCount = 1;
        stage.layout.editedBand = 0;
    });
}
