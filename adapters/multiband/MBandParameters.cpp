// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandParameters.h"

#include "dsp/MAmplitude.h"
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

double InForce(const ParameterDefinition& record) noexcept {
    return record.Nearest(record.Effective());
}

double EndOf(const ParameterDefinition& record, MForcedMix forced) noexcept {
    if (forced.full) return 1;
    return forced.off ? 0 : InForce(record);
}

}  // namespace

MBandParameters::MBandParameters() {
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
    for (int i = 0; i < kLimits; ++i) limits[i] = InForce(limits_[i]);
    return limits;
}

double MBandParameters::Amplitude::Of(const ParameterDefinition& record) noexcept {
    const double now = InForce(record);
    if (now != decibels) {
        decibels = now;
        linear = record.IsRedirected() ? MAmplitudeOf(now) : std::pow(10.0, now * 0.05);
    }
    return linear;
}

void MBandParameters::ReadInto(MBandBlock& block, int bandCount, MForcedMix wet,
                               MForcedMix dry) noexcept {
    block.inputGain.to = inputAmplitude_.Of(inputGain_);
    block.outputGain.to = outputAmplitude_.Of(outputGain_);
    block.wet.to = EndOf(wet_, wet);
    block.dry.to = EndOf(dry_, dry);
    // A button acts at once: it is no ramp from where the parameter was.
    if (wet.off || wet.full) block.wet.from = block.wet.to;
    if (dry.off || dry.full) block.dry.from = block.dry.to;
    for (int band = 0; band < kMaxCrossoverBands; ++band) {
        const bool runs = band < bandCount;
        block.bands[band].gain.to = runs ? amplitudes_[band].Of(gains_[band]) : 1;
        block.bands[band].panorama.to = runs ? InForce(panoramas_[band]) : 0;
    }
}
