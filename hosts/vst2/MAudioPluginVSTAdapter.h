// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "hosts/vst2/AudioEffectX.h"
#include "hosts/vst2/MVSTAccumulator.h"
#include "hosts/vst2/MVSTMidiQueue.h"
#include "hosts/vst2/MVSTTransport.h"
#include "plugin/MAudioPlugin.h"
#include "plugin/MAudioPluginAdapter.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

namespace Vst2 {

/// The plug-in in a VST 2.4 host: forwards and guards, nothing else. Programs are not offered,
/// since the plug-in has presets of its own. Nothing thrown leaves an operation; a failure is
/// reported with the operation's name and the host gets a neutral answer.
class MAudioPluginVSTAdapter final : public MAudioPluginAdapter, public AudioEffectX {
public:
    class MEditor;

    /// Takes the plug-in over and makes it ready to run. Throws MException when that fails, which
    /// has been reported. [setup]
    MAudioPluginVSTAdapter(AudioMasterCallback host, VstInt32 uniqueID,
                           std::shared_ptr<MAudioPlugin> plugin);
    ~MAudioPluginVSTAdapter() override;

    void resume() override;
    /// Rates of 100 Hz and less, with which hosts probe, leave the plug-in as it is. [main]
    void setSampleRate(float rate) override;
    void setBlockSize(VstInt32 frames) override;

    void process(float** inputs, float** outputs, VstInt32 frames) override;
    void processReplacing(float** inputs, float** outputs, VstInt32 frames) override;
    VstInt32 processEvents(const VstEvents* events) override;

    /// An index that no parameter has is ignored, read as 0 and has empty texts. [any]
    void setParameter(VstInt32 index, float value) override;
    float getParameter(VstInt32 index) override;
    /// The parameter's short key, not its long name: hosts have room for little. [main]
    void getParameterName(VstInt32 index, char* text) override;
    void getParameterDisplay(VstInt32 index, char* text) override;
    void getParameterLabel(VstInt32 index, char* text) override;
    bool string2parameter(VstInt32 index, const char* text) override;
    /// Tells of switches and of parameters that move in steps; there is nothing to say of others.
    /// [any]
    bool getParameterProperties(VstInt32 index, VstParameterProperties* properties) override;

    /// Programs and banks are the same bytes. [main]
    VstInt32 getChunk(void** data, bool isPreset) override;
    /// Answers 1 always: hosts show what else they get as a fault of the whole session. [main]
    VstInt32 setChunk(const void* data, VstInt32 byteSize, bool isPreset) override;

    bool getInputProperties(VstInt32 index, VstPinProperties* properties) override;
    bool getOutputProperties(VstInt32 index, VstPinProperties* properties) override;
    /// Takes at most the channels that the plug-in was made with. The host finds the new counts in
    /// its record and is told; one that does not follow keeps its old ones and gets a copy of the
    /// last channel in those that the plug-in has no more. [main]
    bool setSpeakerArrangement(const VstSpeakerArrangement* input,
                               const VstSpeakerArrangement* output) override;

    bool getEffectName(char* text) override;
    bool getVendorString(char* text) override;
    bool getProductString(char* text) override;
    VstInt32 getVendorVersion() override { return 1; }
    VstInt32 canDo(const char* text) override;
    /// An endless tail is the longest that there is. [any]
    VstInt32 getTailSize() override;
    /// Tells the host what has waited for that: changes that other threads have made, parameters
    /// that MIDI or MultiParameters have moved, and writes out failures. It does so at home only:
    /// on the thread that the host made the plug-in on or, since hosts end such threads, has made
    /// its last call on that none makes where blocks run. After a call that goes with the blocks
    /// the host is told nothing. [any]
    void dispatched(VstCaller caller) override;

    void SendBypassAutomation(bool on) override;
    void GenerateMIDIEvent(int deltaFrames, const std::array<std::uint8_t, 4>& data) override;
    /// This and ReportParameterChanges reach the host at once at home, unless a block is running;
    /// from any other thread, such as the one that loads presets, with the host's next call after
    /// which `dispatched` tells it: a host may wait for its own thread when it is told something.
    /// [any]
    void ReportLatency() override;
    void ChangeEditorSize(int width, int height) override;
    void SendParameterAutomation(std::uint32_t identifier, double x) override;
    void ReportParameterChanges() override;

    /// Hands a MIDI message to the plug-in at the start of the next block. [any]
    void QueueMIDIEvent(int deltaFrames, const std::array<std::uint8_t, 4>& data);

private:
    using Clock = std::chrono::steady_clock;

    void SetUp(VstInt32 uniqueID);
    void SetUpChannels();
    void TellChannels(const MBusLayout& layout);
    bool IsParameter(VstInt32 index) const noexcept;
    bool FillPin(VstInt32 index, int channelCount, VstPinProperties& pin) const;
    int CreatedChannelsPerBus() const noexcept { return created_.outputs; }

    bool IsAtHome() const noexcept { return ThisThread() == homeThread_.load(); }
    static std::uint64_t ThisThread() noexcept;
    bool IsTimeForMoves() noexcept;
    template <class Tell>
    void TellHost(std::atomic<bool>& waits, Tell&& tell);

    static void ReplaceBlock(AEffect* effect, float** inputs, float** outputs, VstInt32 frames);
    [[gnu::always_inline]] inline void PerformProcessing(float** inputs, float** outputs,
                                                         VstInt32 frames, bool replacing);
    [[gnu::always_inline]] inline void PrepareProcessing(VstInt32 frames);
    [[gnu::cold]] void FillSurplus(float* const* outputs, VstInt32 frames) const;
    [[gnu::cold]] void DeliverQueuedMIDIEvents();
    [[gnu::cold]] void SendQueuedMIDIEvents();

    // What every block reads lies together, right behind the way to the host, for which
    // AudioEffectX is the last base: the plug-in's own work has driven out of the processor's
    // caches all that there was.
    MAudioPlugin* const plugin_;
    bool wantsHostTime_ = false;
    std::atomic<bool> hasIncoming_{false};
    std::atomic<bool> hasOutgoing_{false};
    std::atomic<bool> isInBlock_{false};  // or in its events; home may be the thread that runs it
    bool hasSurplus_ = false;             // the host counts more outputs than the plug-in has
    MVSTTransport transport_;

    MBusLayout created_;    // the widest that the host may ask for
    bool isSetUp_ = false;  // before that, hosts write parameters that they have not read yet
    std::vector<std::uint8_t> lastChunk_;  // the host reads it after getChunk has returned
    std::atomic<std::uint64_t> homeThread_{ThisThread()};
    std::atomic<bool> latencyWaits_{false};  // to be told to the host
    std::atomic<bool> changesWait_{false};
    std::atomic<Clock::duration> lastMoves_{};   // when the plug-in was last asked for moves
    const std::shared_ptr<MAudioPlugin> owned_;  // with whatever else it needs to live
    MVSTAccumulator accumulator_;
    MVSTMidiQueue incoming_{hasIncoming_};
    MVSTMidiQueue outgoing_{hasOutgoing_};
};

/// Makes an instance for a host that has just called the library's entry; null when the host does
/// not say its version or the plug-in cannot be made. [main]
AEffect* CreateEffect(AudioMasterCallback host, VstInt32 uniqueID,
                      std::shared_ptr<MAudioPlugin> (*makePlugin)());

}  // namespace Vst2
