// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/hostcheck/MHostRules.h"

#include "core/MFormat.h"
#include "tools/hostcheck/MVst2Host.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <thread>

using namespace Vst2;

namespace {

using FaultList = std::vector<std::string>;

constexpr int kSampleRate = 48000;
constexpr int kFrames = 64;

/// One block of silence; outputs that are not written hold no numbers.
class Block {
public:
    explicit Block(const AEffect& effect) : in_(Count(effect.numInputs)) {
        constexpr float kUnwritten = std::numeric_limits<float>::quiet_NaN();
        out_.assign(Count(effect.numOutputs), std::vector<float>(kFrames, kUnwritten));
        for (std::vector<float>& channel : in_) channel.resize(kFrames);
    }
    void Play(MVst2Host& host) {
        host.Process(Pointers(in_).data(), Pointers(out_).data(), kFrames);
    }
    bool IsWritten(int channel) const {
        const std::vector<float>& samples = out_[static_cast<std::size_t>(channel)];
        return std::none_of(samples.begin(), samples.end(), [](float s) { return std::isnan(s); });
    }

private:
    using Channels = std::vector<std::vector<float>>;

    static std::size_t Count(int channels) {
        return static_cast<std::size_t>(std::max(channels, 0));
    }
    static std::vector<float*> Pointers(Channels& channels) {
        std::vector<float*> pointers;
        for (std::vector<float>& channel : channels) pointers.push_back(channel.data());
        return pointers;
    }

    Channels in_, out_;
};

/// Outputs beyond what a plug-in processes are read as well, by hosts that hear of changes and by
/// those that do not.
void CheckOutputs(MPluginLibrary::Vst2Entry entry, bool followsChanges, FaultList& faults) {
    MVst2Host host(entry);
    host.SetFollowsChanges(followsChanges);
    if (!host.Start(1, kSampleRate, kFrames)) return;
    Block block(host.Effect());
    block.Play(host);
    for (int channel = 0; channel < host.Effect().numOutputs; ++channel) {
        if (block.IsWritten(channel)) continue;
        faults.push_back(MFormat("in mono, output {0} of {1} is not written", channel + 1,
                                 host.Effect().numOutputs));
    }
}

/// Hosts that remember another version's parameters ask for some that are not there.
void CheckIndices(MPluginLibrary::Vst2Entry entry, FaultList& faults) {
    MVst2Host host(entry);
    const auto before = host.SaveState();
    for (const int index : {-1, host.ParameterCount(), 99999, std::numeric_limits<int>::min()}) {
        for (const float position : {0.0f, 1.0f}) {
            host.SetParameter(index, position);
            if (host.SaveState() == before) continue;
            faults.push_back(MFormat("a write to parameter {0}, which is none, counts", index));
        }
        bool isNone = host.GetParameter(index) == 0 && !host.SetParameterText(index, "1");
        for (const auto opcode : {effGetParamName, effGetParamDisplay, effGetParamLabel}) {
            isNone = isNone && host.Text(opcode, index).empty();
        }
        if (!isNone) faults.push_back(MFormat("parameter {0}, which is none, answers", index));
    }
}

/// Whatever makes the plug-in change by itself, with blocks enough for a preset to be loaded
/// meanwhile. Neighbours go one after the other: what one triggers the next may take back.
void MoveEverything(MVst2Host& host) {
    constexpr int kBlocks = 5000;
    Block block(host.Effect());
    for (const int first : {0, 1}) {
        for (const float position : {0.0f, 1.0f}) {
            for (int i = first; i < host.ParameterCount(); i += 2) host.SetParameter(i, position);
            block.Play(host);
        }
        for (int i = 0; i < kBlocks && host.Asked().inBlocks == 0; ++i) {
            host.SendMIDI(0, {0x90, 60, 100, 0});
            block.Play(host);
        }
    }
}

/// Hosts create plug-ins on threads that end, whose identifiers the audio thread may get, and wait
/// for their own thread when they are told of a change.
void CheckThreads(MPluginLibrary::Vst2Entry entry, FaultList& faults) {
    std::unique_ptr<MVst2Host> host;
    std::thread([&] {
        host = std::make_unique<MVst2Host>(entry);
        host->Start(2, kSampleRate, kFrames);
    }).join();
    std::thread([&] { MoveEverything(*host); }).join();
    if (host->Asked().inBlocks > 0) faults.push_back("the host is told of a change in a block");
}

}  // namespace

std::vector<std::string> MHostRules::Faults(MPluginLibrary::Vst2Entry entry) {
    std::vector<std::string> faults;
    CheckOutputs(entry, true, faults);
    CheckOutputs(entry, false, faults);
    CheckIndices(entry, faults);
    CheckThreads(entry, faults);
    return faults;
}
