// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MMutex.h"
#include "plugin/MAudioPluginAdapter.h"
#include "plugin/MBusLayout.h"
#include "plugin/MPluginIdentity.h"
#include "plugin/MTransport.h"
#include "plugin/parameters/MParameterDirectory.h"
#include "plugin/parameters/MParameterListener.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class MArchive;
class MAudioPluginEditor;
class MXMLNode;

/// The plug-in as every host binding sees it, whatever the host's interface.
///
/// A binding sets rates, sizes and channels, calls InitProcessing, then Process per block; it may
/// call InitProcessing again at any time, also while another thread is in Process.
///
/// Nothing thrown leaves the operations below. A failure that says what it is (an MException) is
/// swallowed, since the neutral answer tells the host all that it can use; any other is reported
/// with the operation's name. An identifier that no parameter has is answered by the nearest one
/// below, or by the first; without parameters the answer is 0 or an empty text.
class MAudioPlugin {
public:
    class AutomationAdapter;

    explicit MAudioPlugin(const MPluginIdentity& identity = {});
    MAudioPlugin(const MAudioPlugin&) = delete;
    MAudioPlugin& operator=(const MAudioPlugin&) = delete;

    virtual ~MAudioPlugin();

    const MPluginIdentity& Identity() const noexcept { return identity_; }

    /// What happens to the outputs, [channels][sampleCount], once the effect has made them. [audio]
    virtual void PostProcess(float* const* outputs, int sampleCount);

    /// Sets a parameter to position `x`, held within 0..1; what is no number is ignored. Unless
    /// `silent`, the parameter's listener learns of it. Takes no lock and no memory. [any]
    virtual void SetParameter(std::uint32_t identifier, double x, bool silent);
    /// A parameter's position, 0..1. Takes no lock and no memory. [any]
    virtual double GetParameter(std::uint32_t identifier);
    /// A parameter's name for the user. [main]
    virtual std::string GetParameterName(std::uint32_t identifier);
    /// A parameter's stable key, unique and readable within 24 characters. [main]
    virtual std::string GetParameterID(std::uint32_t identifier);
    /// The display text of a parameter's value. [main]
    virtual std::string GetParameterValueName(std::uint32_t identifier);
    /// The display text of a parameter's value at position `x`, which is held within 0..1. [main]
    virtual std::string GetParameterValueNameFrom01(std::uint32_t identifier, double x);
    /// The position of a typed value, to be set by SetParameter; the present position when the text
    /// means none. [main]
    virtual double ParseParameterValueName(std::uint32_t identifier, const std::string& text);
    virtual std::string GetParameterUnitsName(std::uint32_t identifier);
    /// The number of a parameter's ParameterKind; 0 without parameters. [any]
    virtual std::int32_t GetParameterType(std::uint32_t identifier);
    /// The position of a parameter's default on the straight scale. [any]
    virtual double GetParameterDefaultValue(std::uint32_t identifier);

    /// Writes the whole state into `node`, or reads it from there, as the archive says. Reading
    /// keeps what the node does not mention. A failure is reported. [main]
    virtual void Store(MXMLNode node, MArchive& archive);
    /// Puts everything that a state holds to its default. [main]
    virtual void SetDefaults();

    /// Makes ready for the rate, block size and channels that were set, from silence. Waits for a
    /// running block; a block that starts meanwhile is silent. False when it could not: because a
    /// block does not end, and everything stays as it was, or because memory has run out, and
    /// blocks are silent until another call succeeds. [main]
    virtual bool InitProcessing();
    /// One block: `inputs` is [InputChannelCount()][sampleCount], `outputs`
    /// [OutputChannelCount()][sampleCount]; they may be the same or overlap. A null channel or
    /// array of inputs stands for silence, a null output for one that nobody listens to. Without
    /// samples only the parameters are taken over. A block longer than kLongestBlock runs in
    /// pieces; there, channels overlap sample for sample or not at all. Allocates when
    /// `sampleCount` exceeds the maximum block size. [audio]
    virtual void Process(const float* const* inputs, float* const* outputs, int sampleCount);
    /// Lets the effect follow the parameters that were written. Every block begins with it. [audio]
    virtual void ProcessUpdate();

    /// What the bindings are to give: MIDI events, the host's transport. [any]
    virtual bool ReceivesMIDI() const noexcept;
    virtual bool SendsMIDI() const noexcept;
    virtual bool WantsHostTime() const noexcept;
    /// A MIDI message that takes effect `deltaFrames` samples into the next block. [audio]
    virtual void ProcessMIDIEvent(int deltaFrames, const std::array<std::uint8_t, 4>& data);

    /// How much later than the input the output comes, in samples. [any]
    virtual int GetLatency() const noexcept;
    /// How long sound may go on after silence has come in, in samples; -1 for without end. [any]
    virtual int GetTailLength() const noexcept;

    /// The editor, which the plug-in keeps; null for a plug-in without one. [main]
    virtual MAudioPluginEditor* CreateEditor();
    /// Whether CreateEditor may make one; asked while hosts scan, when nothing must be made. [any]
    virtual bool HasEditor() const noexcept;

    /// Tells the host that a parameter has moved to position `x`. Automation may start on any
    /// thread, the audio thread included. [any]
    virtual void SendHostAutomation(std::uint32_t identifier, double x);
    /// A parameter has been written by the host and was not silent about it; the values are in its
    /// own units. Must not wait, allocate or throw. [any]
    virtual void ParameterChanged(std::uint32_t identifier, double oldValue,
                                  double newValue) noexcept;

    /// Tells the host of parameters that have moved by other means than the host's, such as MIDI,
    /// since the last call. The audio thread leaves that to whoever calls this. [main]
    virtual void ReportMovedParameters();

    /// Ends what other threads do for the plug-in and waits for it: none of them calls the host any
    /// more. A binding calls it before it goes, when blocks have ended. [main]
    virtual void EndBackgroundWork();

    /// Whether the host may be looking at the plug-in only, as it does while it scans: meanwhile
    /// InitProcessing touches no file of the user's and starts no thread. Off from the start; a
    /// binding turns it on before it prepares the plug-in for a host that has not asked for that,
    /// and off before it does so because the host resumes. [main]
    void SetScanned(bool on) noexcept { isScanned_.store(on, std::memory_order_relaxed); }
    bool IsScanned() const noexcept { return isScanned_.load(std::memory_order_relaxed); }

    /// Sets the rate in hertz, from the next InitProcessing on. False, and nothing changes, for
    /// what no converter has; a rate that is too high is reported. [main]
    bool SetSampleRate(int sampleRate);
    int SampleRate() const noexcept { return sampleRate_.load(std::memory_order_relaxed); }

    /// The longest block that is made room for, in samples; longer ones run in pieces of it.
    static constexpr int kLongestBlock = 1 << 17;
    /// Sets how long blocks get at most, in samples, from the next InitProcessing on; more than
    /// kLongestBlock is taken for that. False, and nothing changes, for less than one. [main]
    bool SetMaximumBlockSize(int sampleCount) noexcept;
    int MaximumBlockSize() const noexcept { return blockSize_.load(std::memory_order_relaxed); }

    /// Takes over other channels, InitProcessing included. False, and the channels stay, for a
    /// layout that is not valid or when InitProcessing fails. The host must not run blocks
    /// meanwhile: their arrays would have the wrong length. [main]
    bool SetBusLayout(const MBusLayout& layout);
    /// The channels that the next block has. [main]
    const MBusLayout& BusLayout() const noexcept { return layout_; }
    int InputChannelCount() const noexcept { return layout_.inputs; }
    int OutputChannelCount() const noexcept { return layout_.outputs; }
    /// Channels of one bus: those of the output. [main]
    int ChannelsPerBus() const noexcept { return layout_.outputs; }

    /// 0, or 7 for surround processing: more than two channels. [main]
    int ChannelMode() const noexcept { return layout_.outputs > 2 ? kSurround : 0; }

    /// The host's transport, which the binding keeps up to date before each block. Only the audio
    /// thread touches it.
    MTransport& Transport() noexcept { return transport_; }

    /// Identifiers are 0 to ParameterCount() - 1. [any]
    int ParameterCount() const noexcept { return parameters_.Count(); }
    /// Every parameter object; complete before the host first asks. Only [setup] may add to it.
    const MParameterDirectory& Parameters() const noexcept { return parameters_; }

    /// Sets the host's side (borrowed), null for none. [setup]
    void SetHost(MAudioPluginAdapter* host) noexcept { host_ = host; }
    MAudioPluginAdapter* Host() const noexcept { return host_; }

    /// Makes an automation adapter for one gesture; it lives until the next
    /// DestroyTemporaryAutomationAdapters and must not become a parameter's listener. [main]
    AutomationAdapter& CreateTemporaryAutomationAdapter(std::uint32_t firstIdentifier, int count);
    /// Drops the adapters of finished gestures. [main]
    void DestroyTemporaryAutomationAdapters();

protected:
    static constexpr int kSurround = 7;

    MParameterDirectory& MutableParameters() noexcept { return parameters_; }

    /// Tells the host when the latency is another than it knows of. Not under a lock: the host may
    /// ask back. [main]
    void ReportLatencyChange();
    /// Tells the host that parameters were changed other than by itself. Not under a lock. [main]
    void ReportParameterChanges();

private:
    const MPluginIdentity identity_;
    std::atomic<int> sampleRate_{44100};
    std::atomic<int> blockSize_{1024};
    std::atomic<bool> isScanned_{false};
    std::atomic<int> reportedLatency_{0};  // what a host takes for granted
    MBusLayout layout_;
    alignas(64) MTransport transport_;  // every block writes it: one line of the cache
    MParameterDirectory parameters_;
    MAudioPluginAdapter* host_ = nullptr;
    MMutex temporaryMutex_;  // editors of two instances' windows may share a thread, or not
    std::vector<std::unique_ptr<AutomationAdapter>> temporaryAdapters_;
};

/// The listener of a run of parameters and their way to the host: `index` counts from the first
/// identifier of the run, 0 to count - 1, and any other is refused without effect. An adapter
/// without a plug-in reports nowhere. Every operation may be called on any thread and lets nothing
/// thrown leave; how long it takes is up to the host.
class MAudioPlugin::AutomationAdapter : public MParameterListener {
public:
    /// `plugin` is borrowed, may be null and outlives the adapter. [setup]
    AutomationAdapter(MAudioPlugin* plugin, std::uint32_t firstIdentifier, int count) noexcept
        : plugin_(plugin), firstIdentifier_(firstIdentifier), count_(count) {}

    /// Reports the parameter's present position. [any]
    void SendAutomation(int index) noexcept;
    /// Reports the position `x`. [any]
    void SendAutomationValue(int index, double x) noexcept;
    /// Reports a position just beside `x` and then `x`: a host that ignores repeated values records
    /// the gesture all the same. [any]
    void SendAutomationValueWithChange(int index, double x) noexcept;
    /// Reports the present position of every parameter of the run, in ascending order. [any]
    void SendAllAutomation() noexcept;

    int Count() const noexcept { return count_; }

    void ParameterChanged(int index, std::uint32_t offset, double oldValue,
                          double newValue) noexcept override;

private:
    std::uint32_t Identifier(int index) const;

    MAudioPlugin* const plugin_;
    const std::uint32_t firstIdentifier_;
    const int count_;
};
