// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/MAudioPluginVSTAdapter.h"

#include "core/MException.h"
#include "core/MGuard.h"
#include "hosts/vst2/MVSTEditor.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Vst2 {

namespace {

constexpr const char* kCreationFailed = "Error creating Vst plugin object.";
constexpr VstInt32 kStereoOnlyVersion = 2300;  // hosts below know stereo buses alone
constexpr VstInt32 kFirstVersion = 100;        // hosts below connect two inputs at least
constexpr float kHighestProbeRate = 100.5f;    // hertz; rounds to 101
constexpr float kHighestRate = 1e9f;  // hertz; an integer holds it, and the plug-in refuses it
constexpr std::chrono::milliseconds kPauseOfMoves{100};

}  // namespace

MAudioPluginVSTAdapter::MAudioPluginVSTAdapter(AudioMasterCallback host, VstInt32 uniqueID,
                                               std::shared_ptr<MAudioPlugin> plugin)
    : AudioEffectX(host, 0, plugin->ParameterCount()),
      plugin_(plugin.get()),
      owned_(std::move(plugin)) {
    isSetUp_ = Guard("MAudioPluginVSTAdapter::MAudioPluginVSTAdapter", false, [&] {
        SetUp(uniqueID);
        return true;
    });
    if (isSetUp_) return;
    plugin_->SetHost(nullptr);
    throw MException(kCreationFailed);
}

MAudioPluginVSTAdapter::~MAudioPluginVSTAdapter() {
    plugin_->EndBackgroundWork();
    plugin_->SetHost(nullptr);  // what ends from here on is nothing that the host could be told
    setEditor(nullptr);
}

void MAudioPluginVSTAdapter::SetUp(VstInt32 uniqueID) {
    plugin_->SetHost(this);
    plugin_->SetScanned(true);  // until the host resumes
    wantsHostTime_ = plugin_->WantsHostTime();
    SetUpChannels();
    setUniqueID(uniqueID);
    setFlag(effFlagsCanReplacing, true);
    setProcessReplacing(&ReplaceBlock);
    setFlag(effFlagsProgramChunks, true);
    setFlag(effFlagsIsSynth, plugin_->ReceivesMIDI() && plugin_->InputChannelCount() == 0);
    ReportLatency();
    resume();
    if (plugin_->HasEditor()) setEditor(std::make_unique<MEditor>(*plugin_));
}

void MAudioPluginVSTAdapter::SetUpChannels() {
    const VstInt32 version = std::max(getMasterVersion(), VstInt32{1});
    MBusLayout layout = plugin_->BusLayout();
    if (version < kStereoOnlyVersion && layout.inputs >= 1) {
        layout.inputs = std::min(layout.inputs, layout.inputs / plugin_->ChannelsPerBus() * 2);
        layout.outputs = std::min(layout.outputs, 2);
        if (layout != plugin_->BusLayout() && !plugin_->SetBusLayout(layout)) {
            throw MException("The host's channels are not available.");
        }
    }
    created_ = layout;
    setNumInputs(version < kFirstVersion ? std::max(layout.inputs, 2) : layout.inputs);
    setNumOutputs(layout.outputs);
}

void MAudioPluginVSTAdapter::resume() {
    Guard("MAudioPluginVSTAdapter::resume", [&] {
        if (hasFlag(effFlagsIsSynth) || plugin_->ReceivesMIDI()) wantEvents();
        if (isSetUp_) plugin_->SetScanned(false);
        plugin_->InitProcessing();
    });
}

void MAudioPluginVSTAdapter::setSampleRate(float rate) {
    Guard("MAudioPluginVSTAdapter::setSampleRate", [&] {
        AudioEffectX::setSampleRate(rate);
        // Hosts probe with nonsense; the plug-in keeps the last usable rate.
        if (!(rate >= kHighestProbeRate)) return;
        const auto held = static_cast<double>(std::min(rate, kHighestRate));
        const int rounded = static_cast<int>(std::floor(held + 0.5));
        if (!plugin_->SetSampleRate(rounded)) return;
        transport_.SetSampleRate(rounded);
        plugin_->InitProcessing();
    });
}

void MAudioPluginVSTAdapter::setBlockSize(VstInt32 frames) {
    Guard("MAudioPluginVSTAdapter::setBlockSize", [&] {
        AudioEffectX::setBlockSize(frames);
        plugin_->SetMaximumBlockSize(frames);  // counts from resume on
    });
}

void MAudioPluginVSTAdapter::SendBypassAutomation(bool /*on*/) {}

void MAudioPluginVSTAdapter::GenerateMIDIEvent(int deltaFrames,
                                               const std::array<std::uint8_t, 4>& data) {
    outgoing_.Append(MakeMidiEvent(deltaFrames, data));
}

void MAudioPluginVSTAdapter::QueueMIDIEvent(int deltaFrames,
                                            const std::array<std::uint8_t, 4>& data) {
    incoming_.Append(MakeMidiEvent(deltaFrames, data));
}

void MAudioPluginVSTAdapter::ReportLatency() {
    Guard("MAudioPluginVSTAdapter::ReportLatency", [&] {
        setInitialDelay(plugin_->GetLatency());
        TellHost(latencyWaits_, [&] { ioChanged(); });
    });
}

/// A number of this thread's own. The system's identifiers will not do: the audio thread may get
/// that of a thread that has ended.
std::uint64_t MAudioPluginVSTAdapter::ThisThread() noexcept {
    static std::atomic<std::uint64_t> last{0};
    static thread_local const std::uint64_t own = ++last;
    return own;
}

template <class Tell>
void MAudioPluginVSTAdapter::TellHost(std::atomic<bool>& waits, Tell&& tell) {
    if (!isInBlock_.load(std::memory_order_relaxed) && IsAtHome()) {
        tell();
    } else {
        waits.store(true);
    }
}

void MAudioPluginVSTAdapter::dispatched(VstCaller caller) {
    if (caller == VstCaller::Main) homeThread_.store(ThisThread());
    if (caller == VstCaller::Audio || !IsAtHome()) return;
    Guard("MAudioPluginVSTAdapter::dispatched", [&] {
        if (IsTimeForMoves()) plugin_->ReportMovedParameters();
        if (latencyWaits_.exchange(false)) ioChanged();
        if (changesWait_.exchange(false)) updateDisplay();
    });
    MFailureReporter::Flush();
}

// Hosts answer such a report by reading everything anew, with calls that come here again.
bool MAudioPluginVSTAdapter::IsTimeForMoves() noexcept {
    const Clock::duration now = Clock::now().time_since_epoch();
    Clock::duration last = lastMoves_.load(std::memory_order_relaxed);
    return now - last >= kPauseOfMoves &&
           lastMoves_.compare_exchange_strong(last, now, std::memory_order_relaxed);
}

void MAudioPluginVSTAdapter::ChangeEditorSize(int width, int height) {
    Guard("MAudioPluginVSTAdapter::ChangeEditorSize", [&] {
        if (getEditor() != nullptr) sizeWindow(width, height);
    });
}

void MAudioPluginVSTAdapter::SendParameterAutomation(std::uint32_t identifier, double x) {
    Guard("MAudioPluginVSTAdapter::SendParameterAutomation",
          [&] { automate(static_cast<VstInt32>(identifier), static_cast<float>(x)); });
}

void MAudioPluginVSTAdapter::ReportParameterChanges() {
    Guard("MAudioPluginVSTAdapter::ReportParameterChanges",
          [&] { TellHost(changesWait_, [&] { updateDisplay(); }); });
}

AEffect* CreateEffect(AudioMasterCallback host, VstInt32 uniqueID,
                      std::shared_ptr<MAudioPlugin> (*makePlugin)()) {
    return Guard("VST Plugin main", static_cast<AEffect*>(nullptr), [&]() -> AEffect* {
        if (host == nullptr || host(nullptr, audioMasterVersion, 0, 0, nullptr, 0) == 0) {
            return nullptr;
        }
        std::shared_ptr<MAudioPlugin> plugin = makePlugin();
        if (plugin == nullptr) throw MException(kCreationFailed);
        auto adapter = std::make_unique<MAudioPluginVSTAdapter>(host, uniqueID, std::move(plugin));
        return adapter.release()->getAeffect();  // the host closes it
    });
}

}  // namespace Vst2
