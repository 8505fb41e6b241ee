// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>

class ParameterMainBase;

/// Learns of the changes of a run of parameters, on whatever thread makes them: the host automates
/// from its audio thread as well as from its interface thread, sometimes from both at once.
class MParameterListener {
public:
    /// The bit of the flags that asks the editor to refresh itself.
    static constexpr std::uint32_t kNeedsRefresh = 4;

    MParameterListener() = default;
    MParameterListener(const MParameterListener&) = delete;
    MParameterListener& operator=(const MParameterListener&) = delete;
    virtual ~MParameterListener() = default;

    /// The parameter at `index` of the run went from `oldValue` to `newValue`, in its own units.
    /// Must not wait, allocate or throw. [any]
    virtual void ParameterChanged(int index, std::uint32_t offset, double oldValue,
                                  double newValue) noexcept = 0;

    /// Asks for a refresh of the editor. [any]
    void RequestRefresh() noexcept { flags_.fetch_or(kNeedsRefresh, std::memory_order_release); }
    /// Whether a refresh has been asked for since the last call. [any]
    bool TakeRefresh() noexcept {
        return (flags_.fetch_and(~kNeedsRefresh, std::memory_order_acquire) & kNeedsRefresh) != 0;
    }
    std::uint32_t Flags() const noexcept { return flags_.load(std::memory_order_acquire); }

private:
    std::atomic<std::uint32_t> flags_{0};
};

/// What holds parameters: the plug-in or one of its bands.
class MParameterOwner {
public:
    MParameterOwner() = default;
    MParameterOwner(const MParameterOwner&) = delete;
    MParameterOwner& operator=(const MParameterOwner&) = delete;
    virtual ~MParameterOwner() = default;

    /// Queues `parameter`, which has changed, for the owner's next update. Must not wait, allocate
    /// or throw. [any]
    virtual void PostChange(ParameterMainBase& parameter) noexcept = 0;
};
