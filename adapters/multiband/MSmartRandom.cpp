// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MSmartRandom.h"

#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"
#include "dsp/MRandom.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kMostBands = 4;
constexpr double kLowestDraw = 2.0;   // log10 of hertz: 100 Hz
constexpr double kHighestDraw = 3.9;  // 7.9 kHz
/// Bands of less than an octave are no bands to listen to.
constexpr double kLeastDistance = 0.301;

/// Bands lean to a side and step back or forward a little; the dry sound stays at the front.
constexpr MRandomRule kBandRules[] = {
    {"DryWet", MRandomGroup::Mix, 0.25, 0.55},
    {"DryWet2", MRandomGroup::Mix, 1, 1},
    {"Gain", MRandomGroup::Bands, -4, 2, 0.5},
    {"Pan", MRandomGroup::Bands, -0.4, 0.4, 0.4},
};

const MRandomRule* FindRule(std::string_view key, std::span<const MRandomRule> rules) {
    const auto find = [&](std::string_view wanted) -> const MRandomRule* {
        for (const auto& list : {rules, std::span<const MRandomRule>(kBandRules)}) {
            for (const MRandomRule& rule : list) {
                if (rule.key == wanted) return &rule;
            }
        }
        return nullptr;
    };
    const MRandomRule* const exact = find(key);
    return exact != nullptr ? exact : find(key.substr(0, key.find_last_not_of("0123456789") + 1));
}

double Draw(const MRandomRule& rule, const ParameterDefinition& record, MRandom& random) {
    // Both numbers are used up whatever comes of it: a lock elsewhere changes nothing here.
    const bool isDrawn = random.Next() < rule.chance;
    const double position = random.Next();
    if (!isDrawn) return record.defaultValue;
    if (record.kind == ParameterKind::Float) return std::lerp(rule.low, rule.high, position);
    return std::min(rule.high, std::floor(rule.low + position * (rule.high - rule.low + 1)));
}

MBandLayoutRecord DrawBands(MRandom& random) {
    MBandLayoutRecord bands;
    bands.bandCount = std::min(kMostBands, 1 + static_cast<int>(random.Next() * kMostBands));
    const int limits = bands.bandCount - 1;
    // Spread over the room that the distances leave, then the distances put back.
    const double room = kHighestDraw - kLowestDraw - kLeastDistance * std::max(0, limits - 1);
    bands.limits.fill(kHighestDraw);
    for (int i = 0; i < limits; ++i) bands.limits[i] = kLowestDraw + room * random.Next();
    std::sort(bands.limits.begin(), bands.limits.end());
    for (int i = 0; i < limits; ++i) bands.limits[i] += kLeastDistance * i;
    return bands;
}

}  // namespace

MSmartRandom::Settings MSmartRandom::Generate(const MParameterDirectory& parameters,
                                              std::span<const MRandomRule> rules,
                                              const Locks& locks, std::uint32_t seed) {
    MRandom random(seed);
    Settings settings;
    settings.bands = DrawBands(random);
    if (locks.Has(MRandomGroup::Bands)) settings.bands.reset();
    for (int i = 0; i < parameters.Count(); ++i) {
        ParameterMainBase& parameter = parameters.At(i);
        const ParameterDefinition* const record = parameter.Record();
        const MRandomRule* const rule = record != nullptr ? FindRule(record->key, rules) : nullptr;
        if (rule == nullptr) continue;
        const double value = Draw(*rule, *record, random);
        if (!locks.Has(rule->group)) {
            settings.writes.push_back({parameter.FirstIdentifier(), record->Nearest(value)});
        }
    }
    return settings;
}

void MSmartRandom::Apply(const Settings& settings,
                         MAudioEffectPluginToAudioPluginMultiBandAdapter& plugin) {
    if (settings.bands) {
        const MXMLTree tree("bands");
        settings.bands->Save(tree.Root());
        plugin.LoadBandSettings(tree.Root());
    }
    for (const Write& write : settings.writes) {
        const auto match = plugin.Parameters().Find(write.identifier);
        const double position = match.parameter->Record()->ToNormalised(write.value);
        plugin.SetParameter(write.identifier, position, false);
    }
}
