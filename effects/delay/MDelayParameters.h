// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effects/delay/MDelaySettings.h"
#include "plugin/parameters/ParameterDefinition.h"

#include <array>
#include <span>

/// Where each record stands; owners report and store parameters by these numbers.
namespace MDelayIndex {

inline constexpr int kDelayMode = 0;
inline constexpr int kFilterMode = 1;
inline constexpr int kMinFrequency = 2;
inline constexpr int kMaxFrequency = 3;
inline constexpr int kResonance = 4;
inline constexpr int kSaturation = 5;
inline constexpr int kTaps = 6;  ///< the first tap's first record
inline constexpr int kRecordsPerTap = 9;
inline constexpr int kSync = 24;  ///< the first tap's first record of synchronisation
inline constexpr int kRecordsPerSync = 3;
inline constexpr int kCount = 30;

/// One tap's records, counted from its first one.
enum Tap { Panel, Feedback, Gain, Panorama, Delay, LeftOffset, RightOffset, Mode, Freeze };
/// One tap's synchronisation, counted from its first record.
enum Sync { SyncPanel, SyncLength, SyncType };

/// The record's number for tap 0 or 1.
constexpr int OfTap(int tap, Tap record) { return kTaps + tap * kRecordsPerTap + record; }
constexpr int OfSync(int tap, Sync record) { return kSync + tap * kRecordsPerSync + record; }

}  // namespace MDelayIndex

/// The thirty records of the delay and what the engine reads from them.
class MDelayParameters {
public:
    MDelayParameters();

    ParameterDefinition* Records() noexcept { return records_.data(); }
    ParameterDefinition& operator[](int index) noexcept {
        return records_[static_cast<std::size_t>(index)];
    }

    /// The values in force that a block needs, each within its record's range whatever was written.
    /// The ramps lead from where the last block ended. [audio]
    MDelaySettings ReadForBlock() const noexcept;
    /// All of them. [audio]
    MDelaySettings ReadForUpdate() const noexcept;
    /// The settings that `values` would give, one for each record in their order, without those
    /// that only updates need. [any]
    MDelaySettings ReadFrom(std::span<const double> values) const noexcept;

    /// Notes where the block with `settings` ended. [audio]
    void KeepRampEnds(const MDelaySettings& settings) noexcept;

    /// Lets each Delay record be changed only while its tap is not synchronised; returns whether
    /// that changed for any. [audio]
    bool UpdateEnabled() noexcept;

private:
    using Values = std::array<double, MDelayIndex::kCount>;  // in the order of the records

    void DefineGlobals();
    void DefineTap(int tap);
    void DefineSync(int tap);
    Values ReadValues() const noexcept;
    MDelaySettings SettingsOf(const Values& values) const noexcept;
    MDelayTapSettings TapOf(const Values& values, int tap) const noexcept;
    MBlockRamp RampTo(const Values& values, int index) const noexcept;
    ParameterDefinition& Tap(int tap, MDelayIndex::Tap record) noexcept {
        return (*this)[MDelayIndex::OfTap(tap, record)];
    }
    ParameterDefinition& Sync(int tap, MDelayIndex::Sync record) noexcept {
        return (*this)[MDelayIndex::OfSync(tap, record)];
    }

    std::array<ParameterDefinition, MDelayIndex::kCount> records_;
};
