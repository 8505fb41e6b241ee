// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayAudioEffectPlugin.h"

#include "core/MException.h"
#include "dsp/MDenormals.h"

#include <algorithm>

namespace {

constexpr std::int64_t kHighestSampleRate = 1 << 22;  // hertz: far above any converter
constexpr std::int64_t kLongestReservedBlock = 1
                                               << 17;  // samples; a longer one grows what it needs

}  // namespace

MDelayAudioEffectPlugin::MDelayAudioEffectPlugin() {
    SetParameterTable(parameters_.Records(), MDelayIndex::kCount);
}

std::int64_t MDelayAudioEffectPlugin::Dispatch(MEffectCommand command,
                                               const MEffectArguments* arguments) {
    static const MEffectArguments kNone;
    const MEffectArguments& given = arguments != nullptr ? *arguments : kNone;
    const MEffectArgument* const a = given.values;
    switch (command) {
        case MEffectCommand::InitEffectProcessing: {
            longestBlock_ =
                static_cast<int>(std::clamp(a[2].integer, std::int64_t{0}, kLongestReservedBlock));
            const int result = InitEffectProcessing(a[0].integer, a[1].integer);
            Reserve(parameters_.ReadForUpdate());
            UpdateProcessing();
            ResetSmoothing();
            return result;
        }
        case MEffectCommand::ProcessEffect:
            ProcessEffect(static_cast<const MTransport*>(a[0].pointer),
                          static_cast<const float* const*>(a[1].pointer),
                          static_cast<float* const*>(a[2].pointer),
                          static_cast<std::int32_t>(a[3].integer));
            return 0;
        case MEffectCommand::IsTailSilent:
            return IsTailSilent() ? 1 : 0;
        case MEffectCommand::Latency:
            return Query26();
        case MEffectCommand::Reserved104:
            Reserved28(a[0].integer);
            return 0;
        case MEffectCommand::TailLength:
            return Query27();
        case MEffectCommand::Reserved106:
            Reserved24();
            return 0;
        case MEffectCommand::Reserved107:
            Reserved22();
            return 0;
        default:
            return DispatchCommon(command, given);
    }
}

int MDelayAudioEffectPlugin::InitEffectProcessing(std::int64_t channels, std::int64_t sampleRate) {
    if (channels < 1 || channels > kDelayMaxChannels)
        throw MException("Invalid number of channels.");
    if (sampleRate < 1 || sampleRate > kHighestSampleRate) throw MException("Invalid sample rate.");
    const MLock lock(parameterLock_);
    engine_.Prepare(static_cast<int>(channels), static_cast<int>(sampleRate), longestBlock_);
    return 0;
}

void MDelayAudioEffectPlugin::ReserveFor(std::span<const double> values) {
    Reserve(parameters_.ReadFrom(values));
}

void MDelayAudioEffectPlugin::Reserve(const MDelaySettings& settings) {
    MDelayEngine::Needs needs;
    {
        const MLock lock(parameterLock_);
        needs = engine_.NeedsOf(settings);
    }
    if (!needs.HasAny()) return;
    // Destroyed after the lock, should the engine have got lines of its own meanwhile.
    MDelayEngine::Spare spare = MDelayEngine::MakeSpare(settings, needs);
    const MLock lock(parameterLock_);
    engine_.Adopt(spare);
}

void MDelayAudioEffectPlugin::UpdateProcessing() {
    bool isListChanged = false;
    {
        const MLock lock(parameterLock_);
        engine_.Update(parameters_.ReadForUpdate());
        isListChanged = parameters_.UpdateEnabled();
    }
    if (isListChanged) Notify(MEffectNotification::ParameterListChanged);
}

void MDelayAudioEffectPlugin::ProcessEffect(const MTransport* transport, const float* const* inputs,
                                            float* const* outputs, int count) {
    if (count <= 0) return;
    const MLock lock(parameterLock_);
    if (!ArePresent(inputs, outputs)) return;
    const MFlushDenormals flush;
    const MDelaySettings settings = parameters_.ReadForBlock();
    const double tempo = transport != nullptr ? transport->tempo : MTransport().tempo;
    engine_.Process(settings, tempo, inputs, outputs, count);
    parameters_.KeepRampEnds(settings);
}

bool MDelayAudioEffectPlugin::ArePresent(const float* const* inputs,
                                         float* const* outputs) const noexcept {
    if (inputs == nullptr || outputs == nullptr) return false;
    const auto isNull = [](const float* channel) { return channel == nullptr; };
    const int channels = engine_.Channels();
    return std::none_of(inputs, inputs + channels, isNull) &&
           std::none_of(outputs, outputs + channels, isNull);
}

bool MDelayAudioEffectPlugin::IsTailSilent() {
    const MLock lock(parameterLock_);
    return engine_.IsTailSilent();
}
