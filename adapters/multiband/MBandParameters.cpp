// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandParameters.h"

#include "plugin/values/MValueFrequency.h"
#include "plugin/values/MValuePan.h"

#include <cmath>
#include <string>

namespace {

constexpr ParameterText kPan = {MValuePan::Format, MValuePan::Parse};
constexpr ParameterText kHertz = {MValueFrequencyLog::Format, MValueFrequencyLog::Parse};
constexpr const char* kDecibels = "{+0.2} dB";
constexpr double kLargestGain = 24;                  // decibels
constexpr double kLowestLimit = 1.3010299956639813;  // 20 Hz
constexpr double kHighestLimit = 4.301029995663981;  // 20 kHz

constexpr int kInputLevel = kMaxCrossoverBands;  // places among the levels
constexpr int kOutputLevel = kInputLevel + 1;

double EndOf(const ParameterDefinition& record, MForcedMix forced) noexcept {
    if (forced.full) return 1;
    return forced.off ? 0 : record.InForce();
}

}  // namespace

MBandParameters::MBandParameters()
    : levels_{&gains_[0], &gains_[1], &gains_[2],  &gains_[3],
              &gains_[4], &gains_[5], &inputGain_, &outputGain_} {
    wet_.DefineFloat("DryWet", "Wet", 0, 1, 1, std::string());
    dry_.DefineFloat("DryWet2", "Dry", 0, 1, 1, std::string());
    wet_.flags |= ParameterDefinition::kOption19;
    dry_.flags |= ParameterDefinition::kOption19;
    inputGain_.DefineFloat("InputGain", "Input gain", -kLargestGain, kLargestGain, 0, kDecibels);
    outputGain_.DefineFloat("OutputGain", "Output gain", -kLargestGain, kLargestGain, 0, kDecibels);
    for (int i = 0; i < kLimits; ++i) {
        limits_[i].DefineFloat("Limit" + std::to_string(i), "Band limit " + std::to_string(i + 1),
                               kLowestLimit, kHighestLimit, kLowestLimit, kHertz);
    }
    for (int i = 0; i < kMaxCrossoverBands; ++i) {
        const std::string key = std::to_string(i), number = std::to_string(i + 1);
        gains_[i].DefineFloat("Gain" + key, "Band gain " + number, -kLargestGain, kLargestGain, 0,
                              kDecibels);
        panoramas_[i].DefineFloat("Pan" + key, "Band panorama " + number, -1, 1, 0, kPan);
    }
}

template <class Job>
void MBandParameters::ForEach(Job&& job) {
    for (ParameterDefinition* const record : {&wet_, &dry_, &inputGain_, &outputGain_}) {
        job(*record);
    }
    for (ParameterDefinition& record : limits_) job(record);
    for (ParameterDefinition& record : gains_) job(record);
    for (ParameterDefinition& record : panoramas_) job(record);
}

void MBandParameters::AddParameters(MParameterTable& table) {
    ForEach([&](ParameterDefinition& record) { table.Add(record, record.name, record.name); });
}

void MBandParameters::AddStateRecords(MStateRecords& records) {
    ForEach([&](ParameterDefinition& record) { records.Add(record); });
}

MBandParameters::Limits MBandParameters::ReadLimits() const noexcept {
    Limits limits{};
    for (int i = 0; i < kLimits; ++i) limits[i] = limits_[i].InForce();
    return limits;
}

void MBandParameters::FollowGains(int bandCount) noexcept {
    std::array<double, Amplitudes::kCount> now = amplitudes_.decibels;
    bool isAnyMoved = false;
    for (int i = 0; i < Amplitudes::kCount; ++i) {
        if (i >= bandCount && i < kMaxCrossoverBands) continue;
        now[i] = levels_[i]->InForce();
        isAnyMoved = isAnyMoved || now[i] != amplitudes_.decibels[i];
    }
    if (!isAnyMoved) return;
    std::array<double, Amplitudes::kCount> modulated{};
    kernels_.amplitudes(now.data(), modulated.data(), Amplitudes::kCount);
    for (int i = 0; i < Amplitudes::kCount; ++i) {
        if (now[i] == amplitudes_.decibels[i]) continue;
        amplitudes_.linear[i] =
            levels_[i]->IsRedirected() ? modulated[i] : std::pow(10.0, now[i] * 0.05);
    }
    amplitudes_.decibels = now;
}

void MBandParameters::ReadInto(MBandBlock& block, int bandCount, MForcedMix wet,
                               MForcedMix dry) noexcept {
    FollowGains(bandCount);
    block.inputGain.to = amplitudes_.linear[kInputLevel];
    block.outputGain.to = amplitudes_.linear[kOutputLevel];
    block.wet.to = EndOf(wet_, wet);
    block.dry.to = EndOf(dry_, dry);
    // A button acts at once: it is no ramp from where the parameter was.
    if (wet.off || wet.full) block.wet.from = block.wet.to;
    if (dry.off || dry.full) block.dry.from = block.dry.to;
    for (int band = 0; band < kMaxCrossoverBands; ++band) {
        const bool runs = band < bandCount;
        block.bands[band].gain.to = runs ? amplitudes_.linear[band] : 1;
        block.bands[band].panorama.to = runs ? panoramas_[band].InForce() : 0;
    }
}
