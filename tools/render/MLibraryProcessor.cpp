// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MLibraryProcessor.h"

#include "core/MException.h"
#include "core/MFormat.h"
#include "hosts/vst2/MVSTText.h"
#include "plugin/MAudioPlugin.h"
#include "plugin/MPluginState.h"
#include "tools/render/MRenderFailure.h"
#include "tools/render/MTailWatch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

using namespace Vst2;

namespace {

constexpr int kMostChannels = 16;
constexpr int kMaximumFrames = 65536;
/// Longer than a gap between echoes can be without tempo; a tail cut shorter would lose some.
constexpr double kLongestGapSeconds = 12;

VstTimeInfo TimeOf(const MTransport& transport, std::int64_t position, int sampleRate) {
    VstTimeInfo time = {};
    time.samplePos = static_cast<double>(position);
    time.sampleRate = sampleRate;
    time.ppqPos = transport.songPosition;
    time.tempo = transport.tempo;
    time.barStartPos = transport.barStart;
    time.cycleStartPos = transport.cycleStart;
    time.cycleEndPos = transport.cycleEnd;
    time.timeSigNumerator = transport.signatureNumerator;
    time.timeSigDenominator = transport.signatureDenominator;
    time.flags = kVstPpqPosValid | kVstTempoValid | kVstBarsValid | kVstTimeSigValid;
    if (transport.isPlaying) time.flags |= kVstTransportPlaying;
    if (transport.playStateChanged) time.flags |= kVstTransportChanged;
    return time;
}

}  // namespace

MLibraryProcessor::MLibraryProcessor(const std::string& path, MPluginProcessor& catalogue)
    : catalogue_(catalogue) {
    try {
        library_.emplace(path);
        host_.emplace(library_->FindVst2Entry());
    } catch (const MException& exception) {
        FailFile(exception.Text());
    }
    MatchParameters();
    CarryOverState();
}

MLibraryProcessor::~MLibraryProcessor() = default;

void MLibraryProcessor::MatchParameters() {
    std::map<std::string, int> byName;
    for (int i = 0; i < host_->ParameterCount(); ++i) byName[host_->Text(effGetParamName, i)] = i;
    for (const MRenderParameter& parameter : catalogue_.Parameters()) {
        const auto found = byName.find(parameter.key.substr(0, kLongestParameterText));
        if (found == byName.end()) {
            throw MRenderFailure(
                MExitCode::Processing,
                MFormat("the library has no parameter \"{0}\": it is another plug-in, or another "
                        "version",
                        parameter.key));
        }
        indices_.push_back(found->second);
    }
}

void MLibraryProcessor::CarryOverState() {
    host_->LoadState(MPluginState::Save(catalogue_.Plugin()));
    if (MPluginState::Expand(host_->SaveState()) != MPluginState::SaveText(catalogue_.Plugin())) {
        throw MRenderFailure(MExitCode::Processing, "the library does not keep the state");
    }
}

// A text is exact where a position, which hosts keep in single precision, may be a hair beside the
// value that was meant; but not every value is one that a text shows.
void MLibraryProcessor::SetParameter(int index, double value) {
    catalogue_.SetParameter(index, value);
    const auto i = static_cast<std::size_t>(index);
    const ParameterDefinition& record = *Parameters()[i].record;
    const std::string text = record.DisplayText(value);
    const bool isExact = record.ParseDisplayText(text) == value;
    if (isExact && host_->SetParameterText(indices_[i], text)) return;
    host_->SetParameter(indices_[i], static_cast<float>(record.ToNormalised(value)));
}

void MLibraryProcessor::Prepare(int channels, int sampleRate) {
    const AEffect& effect = host_->Effect();
    const bool fits = effect.numInputs <= kMostChannels && effect.numOutputs <= kMostChannels;
    if (!fits || !host_->Start(channels, sampleRate, kMaximumFrames)) {
        throw MRenderFailure(MExitCode::Processing,
                             MFormat("the library does not take {0} channels", channels));
    }
    channels_ = channels;
    sampleRate_ = sampleRate;
    position_ = quietFrames_ = 0;
}

void MLibraryProcessor::Process(const MTransport& transport, const float* const* inputs,
                                float* const* outputs, int frames) {
    const auto room = static_cast<std::size_t>(frames);
    if (silence_.size() < room) {
        silence_.resize(room);
        unheard_.resize(room);
    }
    std::array<const float*, kMostChannels> in = {};
    std::array<float*, kMostChannels> out = {};
    in.fill(silence_.data());
    out.fill(unheard_.data());
    std::copy_n(inputs, channels_, in.begin());
    std::copy_n(outputs, channels_, out.begin());
    host_->SetTime(TimeOf(transport, position_, sampleRate_));
    host_->Process(in.data(), out.data(), frames);
    position_ += frames;
    NoteLevels(outputs, frames);
}

void MLibraryProcessor::NoteLevels(float* const* outputs, int frames) {
    quietFrames_ += frames;
    for (int channel = 0; channel < channels_; ++channel) {
        for (int frame = 0; frame < frames; ++frame) {
            if (std::abs(outputs[channel][frame]) <= MTailWatch::kAudiblePeak) continue;
            quietFrames_ = std::min<std::int64_t>(quietFrames_, frames - frame - 1);
        }
    }
}

bool MLibraryProcessor::IsTailSilent() {
    return static_cast<double>(quietFrames_) >= kLongestGapSeconds * sampleRate_;
}
