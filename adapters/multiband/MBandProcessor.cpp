// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandProcessor.h"

#include "dsp/MDenormals.h"
#include "dsp/MMeter.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

namespace {

/// No input gets into the bands louder than this: far above any sound (+300 dB), far enough below
/// the largest float that neither gains nor transforms leave its range.
constexpr float kInputCeiling = 1e15f;

constexpr MLinearRamp kUnity{1, 0};

/// Whether the sum is in its place already.
bool IsDone(const MBandSum& sum, const float* destination) noexcept {
    return sum.first.samples == destination && sum.second.samples == nullptr && !sum.adds &&
           sum.gain == 1 && sum.first.gain == 1 && sum.first.gains == nullptr;
}

/// An effect for runs that only warm up.
class SilentEffects final : public MBandEffects {
public:
    explicit SilentEffects(int channels) : channels_(channels) {}
    void ProcessBand(int, const float* const*, float* const* outputs, int count) override {
        for (int c = 0; c < channels_; ++c) std::fill_n(outputs[c], count, 0.0f);
    }

private:
    int channels_;
};

}  // namespace

void MBandProcessor::Prepare(int channels) {
    assert(channels >= 1 && channels <= kMaxChannels);
    channels_ = 0;  // should there be no memory
    pairs_.resize(static_cast<std::size_t>((channels + 1) / 2));
    bypassed_.resize(static_cast<std::size_t>(channels));
    linearStates_.resize(static_cast<std::size_t>(channels));
    for (MAnalogPairState& state : pairs_) state.Reset();
    for (MLinearPhaseChannelState& state : linearStates_) state.Reset();
    ResetBypassed();
    channels_ = channels;
}

void MBandProcessor::TakeDesigns() noexcept {
    analog_.BeginBlock();
    linearPhase_.BeginBlock();
}

void MBandProcessor::Reserve(const MBandBlock& block, int count) {
    if (channels_ == 0 || count <= 0) return;
    TakeDesigns();
    std::vector<float> silence(static_cast<std::size_t>(count)), output(silence.size());
    std::array<const float*, kMaxChannels> inputs{};
    Pointers outputs{};
    inputs.fill(silence.data());
    outputs.fill(output.data());
    MBandBlock unmetered = block;
    unmetered.bandMeters = nullptr;
    SilentEffects effects(channels_);
    Process(unmetered, effects, inputs.data(), outputs.data(), count);
    // Bands that are added later find theirs as well; it costs nothing until then.
    for (MGrowingBuffer<float>& input : bandInputs_) Memory(input, count);
    Memory(bandOutput_, count);
    Prepare(channels_);
}

MBandProcessor::Splitter MBandProcessor::PickSplitter(const MBandBlock& block) const noexcept {
    if (block.bandCount <= 1 || block.splitOverride >= 0) return Splitter::None;
    return block.isLinearPhase ? Splitter::LinearPhase : Splitter::Analog;
}

int MBandProcessor::BandCount(const MBandBlock& block, Splitter splitter) const noexcept {
    switch (splitter) {
        case Splitter::Analog:
            return analog_.BandCount();
        case Splitter::LinearPhase:
            return linearPhase_.BandCount();
        default:
            return std::clamp(block.bandCount, 1, kMaxCrossoverBands);
    }
}

MBandProcessor::Pointers MBandProcessor::Memory(MGrowingBuffer<float>& buffer, int count) const {
    // Channels a cache line more than a whole number of lines apart, so that blocks of a power of
    // two do not put both channels on the same places of the cache.
    constexpr int kLine = 16;  // floats
    const int stride = (count + 2 * kLine - 1) / kLine * kLine;
    float* memory = buffer.Get(channels_ * stride);
    Pointers pointers{};
    for (int c = 0; c < channels_; ++c, memory += stride) pointers[c] = memory;
    return pointers;
}

void MBandProcessor::Process(const MBandBlock& block, MBandEffects& effects,
                             const float* const* inputs, float* const* outputs, int count) {
    if (channels_ == 0 || count <= 0) return;
    const MFlushDenormals flush;

    Work work{block, PickSplitter(block), 1, count, {}, {}, {}, {}};
    work.bandCount = BandCount(block, work.splitter);
    if (work.bandCount <= 1) {  // of a crossover that nobody has designed for several bands yet
        work.splitter = Splitter::None;
        work.bandCount = 1;
    }
    Start(work.splitter);
    for (int band = 0; band < work.bandCount; ++band) {
        work.gains[band] = block.BandGain(band);
        work.inputs[band] = Memory(bandInputs_[band], count);
    }
    if (work.bandCount > 1) {
        work.outputs = Memory(bandOutput_, count);
    } else {
        std::copy_n(outputs, channels_, work.outputs.begin());
    }
    work.mix = MakeMix(block, count);
    // From here on the inputs are not needed any more: the outputs may take their place.
    Split(work, inputs);

    bool isSilent = true;
    for (int band = 0; band < work.bandCount; ++band) {
        if (channels_ == 2) Pan(work, band);
        effects.ProcessBand(band, work.inputs[band].data(), work.outputs.data(), count);
        if (!block.bands[band].isMuted) {
            AddBand(work, band, !isSilent, outputs);
            isSilent = false;
        } else if (block.bandMeters != nullptr) {
            block.bandMeters[band].FeedSilence(count);
        }
    }
    if (!isSilent) return;
    for (int c = 0; c < channels_; ++c) std::fill_n(outputs[c], count, 0.0f);
}

// A crossover that comes back must not sound of what it heard when it last ran.
void MBandProcessor::Start(Splitter splitter) noexcept {
    if (std::exchange(running_, splitter) == splitter) return;
    if (splitter == Splitter::Analog) {
        for (MAnalogPairState& state : pairs_) state.Reset();
        ResetBypassed();
    } else if (splitter == Splitter::LinearPhase) {
        for (MLinearPhaseChannelState& state : linearStates_) state.Reset();
    }
}

void MBandProcessor::Split(const Work& work, const float* const* inputs) {
    switch (work.splitter) {
        case Splitter::Analog:
            return SplitAnalog(work, inputs);
        case Splitter::LinearPhase:
            return SplitLinearPhase(work, inputs);
        default:
            return CopyToBands(work, inputs);
    }
}

void MBandProcessor::SplitAnalog(const Work& work, const float* const* inputs) {
    for (int left = 0; left < channels_; left += 2) {
        const int right = std::min(left + 1, channels_ - 1);
        std::array<MFloatPair, kMaxCrossoverBands> bands{};
        for (int band = 0; band < work.bandCount; ++band) {
            bands[band] = {work.inputs[band][left], work.inputs[band][right]};
        }
        analog_.Split(pairs_[left / 2], inputs[left], inputs[right], kInputCeiling, work.gains,
                      bands, work.count);
    }
}

void MBandProcessor::SplitLinearPhase(const Work& work, const float* const* inputs) {
    float* const cleaned = cleaned_.Get(work.count);
    for (int c = 0; c < channels_; ++c) {
        kernels_.takeInput(inputs[c], kUnity, kInputCeiling, cleaned, work.count);
        std::array<float*, kMaxCrossoverBands> bands{};
        for (int band = 0; band < work.bandCount; ++band) bands[band] = work.inputs[band][c];
        linearPhase_.Split(linearStates_[c], cleaned, work.gains, bands, work.count);
    }
}

void MBandProcessor::CopyToBands(const Work& work, const float* const* inputs) {
    for (int band = 0; band < work.bandCount; ++band) {
        const MLinearRamp gain = work.gains[band].Linear(work.count);
        for (int c = 0; c < channels_; ++c) {
            kernels_.takeInput(inputs[c], gain, kInputCeiling, work.inputs[band][c], work.count);
        }
    }
}

void MBandProcessor::Pan(const Work& work, int band) const {
    const MRampEnds panorama = work.block.BandPanorama(band);
    if (panorama.from == 0 && panorama.to == 0) return;
    kernels_.pan(panorama.Linear(work.count), work.inputs[band][0], work.inputs[band][1],
                 work.count);
}

// Wet and dry are the same for every band and channel: what moves is reckoned once.
MBandProcessor::Mix MBandProcessor::MakeMix(const MBandBlock& block, int count) {
    float* const gains = mixGains_.Get(2 * count);
    Mix mix{.wet = static_cast<float>(block.wet.from), .dry = static_cast<float>(block.dry.from)};
    mix.hasOutput = block.wet.from != 0;
    mix.hasInput = block.dry.from != 0;
    if (block.wet.IsStill() && block.dry.IsStill()) return mix;
    kernels_.tabulate(block.wet.Linear(count), gains, count);
    kernels_.tabulate(block.dry.Linear(count), gains + count, count);
    mix.wets = gains;
    mix.dries = gains + count;
    mix.hasOutput = mix.hasInput = true;
    return mix;
}

MBandSum MBandProcessor::Mix::Sum(bool isBypassed, const float* output,
                                  const float* input) const noexcept {
    MBandSum sum;
    if (isBypassed) {
        sum.first.samples = input;
    } else if (hasOutput) {
        sum.first = {output, wet, wets};
        if (hasInput) sum.second = {input, dry, dries};
    } else {
        sum.first = {input, dry, dries};
    }
    return sum;
}

void MBandProcessor::AddBand(const Work& work, int band, bool adds, float* const* outputs) const {
    const bool isBypassed = work.block.bands[band].isBypassed;
    MMeter* const meters = work.block.bandMeters;
    std::array<MBlockLevels, kMaxChannels> levels;
    for (int c = 0; c < channels_; ++c) {
        MBandSum sum = work.mix.Sum(isBypassed, work.outputs[c], work.inputs[band][c]);
        sum.gain = static_cast<float>(work.block.outputGain.from);
        sum.adds = adds;
        if (meters == nullptr && IsDone(sum, outputs[c])) continue;
        kernels_.addBand(sum, outputs[c], meters == nullptr ? nullptr : &levels[c], work.count);
    }
    if (meters != nullptr) meters[band].Take(levels.data(), channels_, work.count);
}

void MBandProcessor::ProcessBypassed(const MBandBlock& block, float* samples, int count,
                                     int channel) noexcept {
    if (channel < 0 || channel >= channels_ || PickSplitter(block) != Splitter::Analog) return;
    const MFlushDenormals flush;
    std::array<double, MAnalogPairState::kPiece> piece{};
    for (int first = 0; first < count; first += MAnalogPairState::kPiece) {
        const int portion = std::min(MAnalogPairState::kPiece, count - first);
        for (int i = 0; i < portion; ++i) {
            const float x = samples[first + i];
            piece[i] = std::isfinite(x) ? static_cast<double>(x) : 0.0;
        }
        analog_.RunAllPasses(bypassed_[channel], {piece.data(), piece.data()}, portion);
        for (int i = 0; i < portion; ++i) samples[first + i] = static_cast<float>(piece[i]);
    }
}

void MBandProcessor::ResetBypassed() noexcept {
    for (MAnalogPairState& state : bypassed_) state.Reset();
}
