// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"

#include "core/MGuard.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace {

// What the crossovers may add to the end of a sound. The two differ deliberately: hosts have cut
// and frozen sound by these numbers.
constexpr int kAnalogTail = 4096;       // samples
constexpr int kLinearPhaseTail = 4098;  // samples

/// Another number for every instance and every session. The standard library's source of seeds
/// would tie the plug-in to the newest C library for numbers that nobody has to guess.
std::uint32_t AnySeed() noexcept {
    static std::atomic<std::uint64_t> instances{0};
    const std::chrono::nanoseconds now = std::chrono::system_clock::now().time_since_epoch();
    // Odd multipliers, of which each bit of the number reaches the upper half.
    std::uint64_t mixed = static_cast<std::uint64_t>(now.count()) * 0x9E3779B97F4A7C15U;
    mixed += ++instances * 0xD1342543DE82EF95U;
    return static_cast<std::uint32_t>((mixed ^ (mixed >> 29)) * 0xBF58476D1CE4E5B9U >> 32);
}

}  // namespace

MAudioEffectPluginToAudioPluginMultiBandAdapter::MAudioEffectPluginToAudioPluginMultiBandAdapter(
    const MEffectAdapterParts& parts)
    : MAudioEffectPluginToAudioPluginAdapter(parts),
      random_(AnySeed()),
      randomRules_(parts.randomRules) {
    ResetBands(MBandLayout::kDefaultBands);
    firstLimits_ = parameters_.ReadLimits();
}

MAudioEffectPluginToAudioPluginMultiBandAdapter::
    ~MAudioEffectPluginToAudioPluginMultiBandAdapter() = default;

int MAudioEffectPluginToAudioPluginMultiBandAdapter::DefaultBandCount() {
    const int count = Settings().Get(MSettingKeys::kDefaultBandCount, MBandLayout::kDefaultBands);
    return count >= 1 && count <= kMaxBands ? count : MBandLayout::kDefaultBands;
}

bool MAudioEffectPluginToAudioPluginMultiBandAdapter::Initialize() {
    return Guard("MAudioEffectPluginToAudioPluginMultiBandAdapter::Initialize", false, [&] {
        std::vector<std::string> names;
        for (int band = 1; band <= kMaxBands; ++band)
            names.push_back("Band " + std::to_string(band));
        CreateEffects(names);
        MParameterTable table(MutableParameters());
        AddParameters(table);
        AddStateRecords(MutableStateRecords());
        OnGlobalChange(true);
        return true;
    });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::AddParameters(MParameterTable& table) {
    parameters_.AddParameters(table);
    for (int band = 0; band < EffectCount(); ++band) {
        const std::string number = std::to_string(band + 1);
        table.AddEffect(Effect(band).Records(), Effect(band).Name() + " - ", "B" + number + " ",
                        PanelShortNames(), &Effect(band));
    }
    AddSharedParameters(table);
}

bool MAudioEffectPluginToAudioPluginMultiBandAdapter::InitProcessing_LockedPart() {
    return Guard("MAudioEffectPluginToAudioPluginMultiBandAdapter::InitProcessing_LockedPart",
                 false, [&] {
                     if (!MAudioEffectPluginToAudioPluginAdapter::InitProcessing_LockedPart())
                         return false;
                     for (MMeter& meter : meters_) meter.Prepare(ActiveRate());
                     return true;
                 });
}

// Blocks stand still here, so this thread may do the audio thread's part as well: nothing that was
// prepared for other channels or another rate is left in its hands.
void MAudioEffectPluginToAudioPluginMultiBandAdapter::PrepareEffects() {
    processor_.Prepare(ActiveLayout().outputs);
    const MLock preparing(preparingLock_);
    const MLock lock(ChangeLock());
    preparedChannels_ = ActiveLayout().outputs;
    preparedRate_ = ActiveRate();
    preparedBlock_ = MaximumBlockSize();
    for (int band = 0; band < layout_.bandCount; ++band) {
        Effect(band).Prepare(preparedChannels_, preparedRate_, preparedBlock_);
    }
    ApplyGlobalChange(true);
    HandOver().TakeStanding(
        [&](const MStateHandOver::Publication& published) { AdoptChanges(published); });
    FillBlock();
    block_.Arrive();
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::UpdateMaxBufferSize() {
    Guard("MAudioEffectPluginToAudioPluginMultiBandAdapter::UpdateMaxBufferSize", [&] {
        MAudioEffectPluginToAudioPluginAdapter::UpdateMaxBufferSize();
        processor_.Reserve(block_, MaximumBlockSize());
    });
}

// Under the preparing lock. No block runs with a band that is prepared here, as it runs with none
// that is not prepared.
void MAudioEffectPluginToAudioPluginMultiBandAdapter::PrepareBands(int bandCount) {
    if (preparedChannels_ == 0) return;
    for (int band = 0; band < bandCount; ++band) {
        MHostedEffect& effect = Effect(band);
        if (effect.IsPreparedFor(preparedChannels_, preparedRate_, preparedBlock_)) continue;
        effect.Prepare(preparedChannels_, preparedRate_, preparedBlock_);
    }
}

bool MAudioEffectPluginToAudioPluginMultiBandAdapter::AreBandsPrepared(int bandCount) const {
    for (int band = 0; band < bandCount && preparedChannels_ > 0; ++band) {
        if (!Effect(band).IsPreparedFor(preparedChannels_, preparedRate_, preparedBlock_))
            return false;
    }
    return true;
}

// Under the preparing or the change lock.
int MAudioEffectPluginToAudioPluginMultiBandAdapter::RateOfDesigns() const noexcept {
    return preparedRate_ > 0 ? preparedRate_ : SampleRate();
}

auto MAudioEffectPluginToAudioPluginMultiBandAdapter::MakePart(
    const MBandLayout& layout, const MBandOptions& options, const MBandParameters::Limits& limits,
    int sampleRate) -> std::shared_ptr<Part> {
    // The audio thread is to find the memory that following an automated limit takes.
    if (options.isLinearPhase) processor_.LinearPhase().Reserve();
    const MCrossoverChoice choice{
        .bandCount = layout.bandCount,
        .isLinearPhase = options.isLinearPhase,
        .hasFixedQ = options.hasFixedQ,
        .slope = options.slope,
        .sampleRate = sampleRate,
    };
    const InForce changed{layout.bandCount, Latency(layout.bandCount, options), layout.mute,
                          layout.bypass, options};
    return std::make_shared<Part>(changed, std::make_unique<MBandDesign>(choice, limits));
}

// Under the change lock, before they are published. A band that has not run for a while must not
// come back with what it last heard.
void MAudioEffectPluginToAudioPluginMultiBandAdapter::RestartReturningBands(
    int bandCount) noexcept {
    for (int band = publishedBands_; band < bandCount && band < EffectCount(); ++band) {
        Effect(band).RequestRestart();
    }
}

// Under the change lock. Also tells the base what the host will ask for.
void MAudioEffectPluginToAudioPluginMultiBandAdapter::NotePublished(
    const InForce& inForce) noexcept {
    publishedBands_ = inForce.bandCount;
    if (EffectCount() == 0) return;
    const int ownTail = Effect(0).Handle().TailLength();
    const int crossoverTail = inForce.options.isLinearPhase ? kLinearPhaseTail : kAnalogTail;
    SetLatency(inForce.latency,
               ownTail < 0 ? -1 : ownTail + (inForce.bandCount > 1 ? crossoverTail : 0));
}

int MAudioEffectPluginToAudioPluginMultiBandAdapter::Latency(int bandCount,
                                                             const MBandOptions& options) const {
    if (EffectCount() == 0) return 0;
    const bool isLate = bandCount > 1 && options.isLinearPhase;
    return Effect(0).Handle().Latency() + (isLate ? MLinearPhaseCrossover::kDelay : 0);
}

int MAudioEffectPluginToAudioPluginMultiBandAdapter::MaximumLatency() const noexcept {
    return Effect(0).Handle().Latency() + MLinearPhaseCrossover::kDelay;
}
