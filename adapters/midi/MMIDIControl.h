// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/midi/MMIDILearn.h"
#include "adapters/midi/MMIDIQueue.h"
#include "adapters/midi/MMIDIRouter.h"
#include "adapters/midi/MMIDIRouting.h"
#include "adapters/midi/MMIDISettings.h"
#include "core/MMutex.h"
#include "dsp/MTripleBuffer.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

class MAudioPlugin;
class MPresetStepper;

/// A plug-in under MIDI control: takes in messages, keeps them until their sample comes, and moves
/// parameters as the user's assignments say. Settings stand under a lock, since an editor and a
/// thread that loads a state may change them at once; the audio thread gets a copy of its own at
/// the start of a block.
///
/// A block goes: Receive for each message, BeginBlock, then ApplyUntil(0), and from there on piece
/// by piece, where a piece ends at NextEvent or before and ApplyUntil follows with its end. All of
/// that is the same while the plug-in is bypassed.
class MMIDIControl {
public:
    /// Both outlive this; `presets` may be null. [setup]
    MMIDIControl(MAudioPlugin& plugin, MPresetStepper* presets);

    /// A copy. [main]
    MMIDISettings Settings() const;
    /// Puts other settings in force, corrected where they are out of range. An assignment to a
    /// parameter that the plug-in does not have is kept but does nothing, which is reported once.
    /// Not before the plug-in has its parameters. [main]
    void SetSettings(const MMIDISettings& settings);
    /// Stores the settings as MMIDISettings does, and puts what was read in force. [main]
    void Store(MXMLNode node, const MArchive& archive);

    /// Waits for the controller or note that is to move a parameter. [main]
    MMIDILearn& Learn() noexcept { return learn_; }
    std::optional<MMIDILearned> TakeLearned() noexcept { return learn_.Take(); }
    /// Makes an assignment of what was learned: the parameter's own of that kind, which keeps its
    /// range, or else the first that is free. False when nothing was learned or none is free.
    /// [main]
    bool AcceptLearned();

    /// Tells the host where the parameters are that MIDI has moved since the last call. The audio
    /// thread leaves that to this thread: a host may do anything when told, and a flood of messages
    /// becomes one report per parameter. [main]
    void ReportMoved();

    /// Messages that found the queue full. [audio]
    std::int64_t DroppedMessages() const noexcept { return queue_.Dropped(); }

    /// A message `deltaFrames` samples into the coming block; bytes that say nothing are ignored.
    /// [audio]
    void Receive(int deltaFrames, const std::array<std::uint8_t, 4>& data) noexcept;
    /// Whether messages may move parameters: then they are worth their exact place. [audio]
    bool MovesParameters() const noexcept { return router_.MovesParameters(); }
    /// Begins a block of `count` samples, and takes over new settings. [audio]
    void BeginBlock(int count) noexcept;
    /// Where the next message is due, from `position` on; the block's length without one. [audio]
    int NextEvent(int position) const noexcept { return queue_.NextOffset(position); }
    /// Applies what is due at `position` or before. Notes go to `listener`, null for nobody.
    /// [audio]
    void ApplyUntil(int position, MMIDIListener* listener) noexcept;
    /// Forgets queued messages, keys and controllers, and closes the gates that keys hold open.
    /// Hosts may be handing over messages meanwhile. [setup]
    void Reset() noexcept;

private:
    template <class Job>
    bool Change(Job&& job);
    std::vector<std::string> Publish();
    void ClearQueueWhenAsked() noexcept;

    MAudioPlugin& plugin_;
    mutable MMutex lock_;  // over the next three and the writing side of the hand-over
    MMIDISettings settings_;
    MMIDIRouting routing_;
    std::set<std::string> reported_;  // parameters that are missing
    MTripleBuffer<MMIDIRouting> handOver_;
    std::atomic<bool> isQueueStale_{false};  // the queue itself is the audio thread's
    MMIDILearn learn_;
    MMIDIQueue queue_;
    MMIDIRouter router_;
};
