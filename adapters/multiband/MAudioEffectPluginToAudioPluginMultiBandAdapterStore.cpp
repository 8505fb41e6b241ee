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

void MAudioEffectPluginToAudioPluginMultiBandAdapter::FillStage(MArchive::Base base) {
    MAudioEffectPluginToAudioPluginAdapter::FillStage(base);
    if (base == MArchive::Base::Current) {
        const MLock lock(settingsLock_);
        stagedLayout_ = layout_;
        stagedOptions_ = options_;
        return;
    }
    stagedLayout_ = {};
    stagedLayout_.SetDefaults(DefaultBandCount());
    stagedOptions_ = {};
    StageDefaultLimits(stagedLayout_.bandCount);
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::StageDefaultLimits(int bandCount) {
    int index = 0;
    for (const double hertz : MBandLayout::DefaultLimits(bandCount)) {
        StateRecords().Of(parameters_.Limit(index++), StagedValues()) = std::log10(hertz);
    }
}

MStateHandOver::Ticket MAudioEffectPluginToAudioPluginMultiBandAdapter::CommitStage() {
    {
        const MLock lock(settingsLock_);
        layout_ = stagedLayout_;
        layout_.DeriveSolo();
        options_ = stagedOptions_;
    }
    return PutIntoForce(StagedLimits(), &StagedValues());
}

// A modulated limit stays where its modulator has it.
MBandParameters::Limits MAudioEffectPluginToAudioPluginMultiBandAdapter::StagedLimits() {
    MBandParameters::Limits limits = parameters_.ReadLimits();
    for (int index = 0; index < MBandParameters::kLimits; ++index) {
        const ParameterDefinition& record = parameters_.Limit(index);
        if (record.IsRedirected()) continue;
        limits[index] = record.Nearest(StateRecords().Of(record, StagedValues()));
    }
    return limits;
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::StoreSettings(MXMLNode node,
                                                                    MArchive& archive) {
    Guard("MAudioEffectPluginToAudioPluginMultiBandAdapter::StoreSettings", [&] {
        stagedOptions_.Store(node, archive);
        StoreLayout(node, archive);
        StoreBandParameters(node, archive);
        if (archive.IsWriting()) {
            SaveBandEffects(node);
        } else if (node.Child(BandKey(0))) {
            isLegacyState_.store(false, std::memory_order_relaxed);
            LoadBandEffects(node);
        } else {
            isLegacyState_.store(true, std::memory_order_relaxed);
            LoadLegacyEffect(node);
        }
        CompleteStage();
    });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::StoreLayout(MXMLNode node,
                                                                  const MArchive& archive) {
    try {
        stagedLayout_.Store(node, archive);
    } catch (const MException& exception) {
        // The rest of the state is as good as any: only the bands stay as many as they are.
        stagedLayout_.bandCount = layout_.bandCount;
        stagedLayout_.editedBand = layout_.editedBand;
        MFailureReporter::Report(exception.Text());
    }
    if (archive.StartsFromDefaults()) StageDefaultLimits(stagedLayout_.bandCount);
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::StoreBandParameters(MXMLNode node,
                                                                          const MArchive& archive) {
    for (int band = 0; band < stagedLayout_.bandCount; ++band) {
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
void MAudioEffectPluginToAudioPluginMultiBandAdapter::SaveBandEffects(MXMLNode node) {
    for (int band = 0; band < EffectCount(); ++band) {
        Guard(kEffects, [&] {
            MXMLNode child = node.AddChild(BandKey(band));
            SaveEffect(band, child);
        });
    }
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::LoadBandEffects(MXMLNode node) {
    for (int band = 0; band < EffectCount(); ++band) {
        Guard(kEffects, [&] {
            if (const MXMLNode child = node.Child(BandKey(band))) LoadEffect(band, child);
        });
    }
}

// States from before there were bands keep the effect's values beside all others. Such a state is
// meant for one band, unless it says something else.
void MAudioEffectPluginToAudioPluginMultiBandAdapter::LoadLegacyEffect(MXMLNode node) {
    Guard(kEffects, [&] {
        const bool hasEffect = LoadEffect(0, node);
        if (!hasEffect || node.Attribute("BandCount")) return;
        stagedLayout_.bandCount = 1;
        stagedLayout_.editedBand = 0;
    });
}
