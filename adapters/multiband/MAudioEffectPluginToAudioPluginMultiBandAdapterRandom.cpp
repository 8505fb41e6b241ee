// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"
#include "core/MGuard.h"

// The targets are named after the records, whose names are their keys in the host's list.
std::vector<MModulationTarget> MAudioEffectPluginToAudioPluginMultiBandAdapter::RandomiserPool(
    MBandRandomiser::Kind kind) {
    using Kind = MBandRandomiser::Kind;
    const bool isOfLimits = kind == Kind::Limits || kind == Kind::LimitsOverlapping;
    std::vector<MModulationTarget> pool;
    for (int i = 0; i < layout_.bandCount - (isOfLimits ? 1 : 0); ++i) {
        const ParameterDefinition& record = isOfLimits            ? parameters_.Limit(i)
                                            : kind == Kind::Gains ? parameters_.Gain(i)
                                                                  : parameters_.Panorama(i);
        pool.push_back(Modulation().MakeTarget(record.name));
    }
    return pool;
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::RandomizeBandModulation(
    MBandRandomiser::Kind kind) {
    TakeUserDefaults();
    const MLock changeLock(ChangeLock());
    Modulation().Change([&](MModulationSettings& settings) {
        const MLock lock(settingsLock_);
        MBandRandomiser(kind, layout_.bandCount, random_)
            .Deal(RandomiserPool(kind), settings.modulators);
    });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::SetRandomSeed(std::uint32_t seed) {
    const MLock changeLock(ChangeLock());
    random_ = MRandom(seed);
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::SetRandomLocks(
    const MSmartRandom::Locks& locks) {
    const MLock changeLock(ChangeLock());
    randomLocks_ = locks;
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::GenerateRandomSettingsSmart() {
    Guard("MAudioEffectPluginToAudioPluginMultiBandAdapter::GenerateRandomSettingsSmart", [&] {
        MSmartRandom::Settings settings;
        WhenSettled([&] {
            random_.Next();
            settings =
                MSmartRandom::Generate(Parameters(), randomRules_, randomLocks_, random_.State());
        });
        MSmartRandom::Apply(settings, *this);
        ReportParameterChanges();
    });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::GenerateRandomSettings() {
    Guard("MAudioEffectPluginToAudioPluginMultiBandAdapter::GenerateRandomSettings", [&] {
        TakeUserDefaults();
        WhenSettled([&] {
            for (int band = 0; band < layout_.bandCount; ++band) {
                for (ParameterDefinition& record : Effect(band).Records()) {
                    record.Overrule(record.FromNormalised(random_.Next()));
                }
                Effect(band).Mark(-1);
            }
        });
        ReportParameterChanges();
    });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::GenerateRandomSettingsForMultiParameters() {
    Guard(
        "MAudioEffectPluginToAudioPluginMultiBandAdapter::GenerateRandomSettingsForMultiParameters",
        [&] {
            for (const ParameterDefinition& record : Modulation().MultiParameterRecords()) {
                double position = 0;
                WhenSettled([&] { position = random_.Next(); });
                // As a host would, so that what they move follows.
                SetParameter(Modulation().MakeTarget(record.name).identifier, position, false);
            }
            ReportParameterChanges();
        });
}
