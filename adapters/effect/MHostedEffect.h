// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/MEffectHandle.h"
#include "plugin/parameters/MParameterListener.h"

#include <atomic>
#include <cstdint>
#include <span>
#include <string>

/// An effect object as a plug-in holds it: its name and what has been written to its records since
/// it last followed them. Writes only leave a mark; the audio thread lets the effect follow at the
/// start of a block. No write is lost, whichever threads they come from.
class MHostedEffect final : public MParameterListener {
public:
    /// Creates the effect through `entry`. Throws MException when there is none. [main]
    MHostedEffect(MEffectEntry entry, std::string name);

    const std::string& Name() const noexcept { return name_; }
    MEffectHandle& Handle() noexcept { return handle_; }
    /// Valid as long as the effect. [any]
    std::span<ParameterDefinition> Records() const noexcept { return records_; }

    /// Makes ready for 1..8 `channels` at `sampleRate` hertz and blocks of up to `longestBlock`
    /// frames, from silence, with the parameters as they are. Throws MException when the effect
    /// refuses. [setup]
    void Prepare(int channels, int sampleRate, int longestBlock = 0);
    /// Whether Prepare was last called with these, and has come to its end. [any]
    bool IsPreparedFor(int channels, int sampleRate, int longestBlock) const noexcept {
        return channels_.load(std::memory_order_acquire) == channels &&
               sampleRate_.load(std::memory_order_relaxed) == sampleRate &&
               longestBlock_.load(std::memory_order_relaxed) == longestBlock;
    }
    /// Puts every record to its default. [main]
    void SetDefaults() noexcept;

    /// Marks the record at `index` as written; -1 stands for all. [any]
    void Mark(int index) noexcept;
    void ParameterChanged(int index, std::uint32_t offset, double oldValue,
                          double newValue) noexcept override;
    /// Lets the next Process start from silence. [any]
    void RequestRestart() noexcept { restart_.store(true, std::memory_order_release); }

    /// Takes the present values as where the last ramps ended. [audio]
    void SettleRamps() noexcept;
    /// Lets the effect follow what was marked. [audio]
    void Update();
    /// One block of the prepared channels; see MEffectHandle. Throws MException when the restart
    /// that was asked for fails. [audio]
    void Process(const MTransport* transport, const float* const* inputs, float* const* outputs,
                 int count);

    /// Whether the effect has enabled or disabled records since the last call. [any]
    bool TakeListChanged() noexcept { return listChanged_.exchange(false); }

private:
    [[gnu::cold]] void Restart();
    static std::int64_t Notify(void* context, std::int64_t notification,
                               const MEffectArguments* arguments);

    const std::string name_;
    MEffectHandle handle_;
    std::span<ParameterDefinition> records_;
    std::uint64_t needsUpdate_ = 0;        // bits of the records whose writes ask for an update
    std::atomic<std::uint64_t> marks_{0};  // the last bit stands for all records
    std::atomic<bool> restart_{false};
    std::atomic<bool> listChanged_{false};
    std::atomic<int> channels_{0};  // 0 while it is being prepared
    std::atomic<int> sampleRate_{0};
    std::atomic<int> longestBlock_{0};  // frames
    bool hasRun_ = false;               // since it was prepared
};
