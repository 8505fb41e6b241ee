// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayParameters.h"

#include "effects/delay/MDelayHelpTexts.h"
#include "plugin/values/MValueFrequency.h"
#include "plugin/values/MValuePan.h"
#include "plugin/values/MValuePercents.h"
#include "plugin/values/MValueTimeMS.h"
#include "plugin/values/MValueVolume.h"

#include <algorithm>
#include <cmath>
#include <string>

using namespace MDelayIndex;  // NOLINT(google-build-using-namespace): this file is about the
                              // records

namespace {

constexpr ParameterText kPercents = {MValuePercents::Format, MValuePercents::Parse};
constexpr ParameterText kPan = {MValuePan::Format, MValuePan::Parse};
constexpr ParameterText kMilliseconds = {MValueTimeMS::Format, MValueTimeMS::Parse};
constexpr ParameterText kHertz = {MValueFrequencyLog::Format, MValueFrequencyLog::Parse};
// Stored as the root of the amplitude: a square-law knob, and presets keep their meaning by it.
constexpr ParameterText kLevel = {MValueVolume::FormatSquareRoot, MValueVolume::ParseSquareRoot};

constexpr double kLargestOffset = 0.1;  // seconds

/// The records whose values every block reads anyway: writing them asks for no update.
void SkipUpdate(ParameterDefinition& record) {
    record.flags &= static_cast<std::uint8_t>(~ParameterDefinition::kUpdateRequired);
}

}  // namespace

MDelayParameters::MDelayParameters() {
    DefineGlobals();
    for (int tap = 0; tap < kDelayTaps; ++tap) {
        DefineTap(tap);
        DefineSync(tap);
    }
    for (ParameterDefinition& record : records_)
        record.flags |= ParameterDefinition::kUpdateRequired;
    SkipUpdate((*this)[kDelayMode]);
    for (int tap = 0; tap < kDelayTaps; ++tap) {
        for (const MDelayIndex::Tap record : {Feedback, Gain, Panorama, Mode})
            SkipUpdate(Tap(tap, record));
    }
}

void MDelayParameters::DefineGlobals() {
    const double lowest = std::log10(20.0), highest = std::log10(20000.0);
    (*this)[kDelayMode].DefineEnum("DelayMode", "Delay mode", {"Parallel", "Serial"}, 0);
    (*this)[kDelayMode].help = MDelayHelpTexts::kDelayMode;
    (*this)[kFilterMode].DefineEnum("FilterMode", "Filter mode",
                                    {"Input filter", "Feedback filter"}, 0);
    (*this)[kFilterMode].help = MDelayHelpTexts::kFilterMode;
    (*this)[kMinFrequency].DefineFloat("MinFrequency", "Min frequency", lowest, highest, lowest,
                                       kHertz);
    (*this)[kMinFrequency].help = MDelayHelpTexts::kMinFrequency;
    (*this)[kMaxFrequency].DefineFloat("MaxFrequency", "Max frequency", lowest, highest, highest,
                                       kHertz);
    (*this)[kMaxFrequency].help = MDelayHelpTexts::kMaxFrequency;
    (*this)[kResonance].DefineFloat("Resonance", "Resonance", 0, 1, 0.5, kPercents);
    (*this)[kResonance].help = MDelayHelpTexts::kResonance;
    (*this)[kSaturation].DefineFloat("Saturation", "Saturation", 0, 1, 0, kPercents);
    (*this)[kSaturation].help = MDelayHelpTexts::kSaturation;
}

void MDelayParameters::DefineTap(int tap) {
    const std::string suffix = tap == 0 ? "" : "1";
    Tap(tap, Panel).DefineGroup("tap" + suffix, "Tap " + std::to_string(tap + 1), tap == 0);
    Tap(tap, Panel).help = MDelayHelpTexts::kTapPanel;
    Tap(tap, Feedback).DefineFloat("feedback" + suffix, "Feedback", 0, 1, 0.4, kLevel);
    Tap(tap, Feedback).help = MDelayHelpTexts::kFeedback;
    Tap(tap, Gain).DefineFloat("gain" + suffix, "Gain", 0, 1, 0.7071067811865, kLevel);
    Tap(tap, Gain).help = MDelayHelpTexts::kGain;
    Tap(tap, Panorama).DefineFloat("panorama" + suffix, "Panorama", -1, 1, 0, kPan);
    Tap(tap, Panorama).help = MDelayHelpTexts::kPanorama;
    Tap(tap, Delay).DefineFloat("delay" + suffix, "Delay", 0, kDelayLongest, 0.1, kMilliseconds);
    Tap(tap, Delay).help = MDelayHelpTexts::kDelay;
    Tap(tap, LeftOffset)
        .DefineFloat("LeftOffset" + suffix, "Left offset", -kLargestOffset, kLargestOffset, 0,
                     kMilliseconds);
    Tap(tap, LeftOffset).help = MDelayHelpTexts::kLeftOffset;
    Tap(tap, RightOffset)
        .DefineFloat("RightOffset" + suffix, "Right offset", -kLargestOffset, kLargestOffset, 0,
                     kMilliseconds);
    Tap(tap, RightOffset).help = MDelayHelpTexts::kRightOffset;
    Tap(tap, Mode).DefineEnum("mode" + suffix, "Mode", {"Default", "Classic", "PingPong"}, 1);
    Tap(tap, Mode).help = MDelayHelpTexts::kMode;
    Tap(tap, Freeze).DefineBool("Freeze" + suffix, "Freeze", false);
    Tap(tap, Freeze).help = MDelayHelpTexts::kFreeze;
}

// These keys count the taps from 1 where the others leave the first one without a number.
void MDelayParameters::DefineSync(int tap) {
    const std::string suffix = std::to_string(tap + 1);
    Sync(tap, SyncPanel).DefineGroup("sync" + suffix, "Synchronization " + suffix, false);
    Sync(tap, SyncPanel).help = MDelayHelpTexts::kSyncPanel;
    Sync(tap, SyncLength)
        .DefineEnum("synclength__" + suffix, "Length", MTempoSync::LengthNames(),
                    MTempoSync::kDefaultLength);
    Sync(tap, SyncLength).help = MDelayHelpTexts::kSyncLength;
    Sync(tap, SyncType).DefineEnum("synctype" + suffix, "Type", MTempoSync::TypeNames(), 0);
    Sync(tap, SyncType).help = MDelayHelpTexts::kSyncType;
}

// One short loop over all records, needed or not: a call for each takes longer, and a copy of the
// rule for each drives other code of the block out of the processor's caches.
MDelayParameters::Values MDelayParameters::ReadValues() const noexcept {
    Values values;
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = records_[i].InForce();
    return values;
}

MDelaySettings MDelayParameters::ReadForBlock() const noexcept {
    const Values values = ReadValues();
    MDelaySettings settings = SettingsOf(values);
    for (int tap = 0; tap < kDelayTaps; ++tap) {
        settings.taps[tap].feedback = RampTo(values, OfTap(tap, Feedback));
        settings.taps[tap].gain = RampTo(values, OfTap(tap, Gain));
        settings.taps[tap].panorama = RampTo(values, OfTap(tap, Panorama));
    }
    return settings;
}

MDelaySettings MDelayParameters::ReadForUpdate() const noexcept {
    const Values values = ReadValues();
    MDelaySettings settings = SettingsOf(values);
    settings.filtersFeedback = values[kFilterMode] > 0;
    settings.minFrequency = std::pow(10.0, values[kMinFrequency]);
    settings.maxFrequency = std::pow(10.0, values[kMaxFrequency]);
    settings.resonance = values[kResonance];
    return settings;
}

MDelaySettings MDelayParameters::ReadFrom(std::span<const double> values) const noexcept {
    Values own{};
    for (std::size_t i = 0; i < own.size() && i < values.size(); ++i)
        own[i] = records_[i].Nearest(values[i]);
    return SettingsOf(own);
}

MDelaySettings MDelayParameters::SettingsOf(const Values& values) const noexcept {
    MDelaySettings settings;
    settings.isSerial = values[kDelayMode] > 0;
    settings.saturation = values[kSaturation];
    for (int tap = 0; tap < kDelayTaps; ++tap) settings.taps[tap] = TapOf(values, tap);
    return settings;
}

MDelayTapSettings MDelayParameters::TapOf(const Values& values, int tap) const noexcept {
    MDelayTapSettings settings;
    settings.isEnabled = values[OfTap(tap, Panel)] > 0;
    settings.delay = values[OfTap(tap, Delay)];
    settings.leftOffset = values[OfTap(tap, LeftOffset)];
    settings.rightOffset = values[OfTap(tap, RightOffset)];
    settings.mode = static_cast<MDelayMode>(static_cast<int>(values[OfTap(tap, Mode)]));
    settings.isFrozen = values[OfTap(tap, Freeze)] > 0;
    settings.isSynchronised = values[OfSync(tap, SyncPanel)] > 0;
    settings.syncLength = static_cast<int>(values[OfSync(tap, SyncLength)]);
    settings.syncType =
        static_cast<MTempoSync::Type>(static_cast<int>(values[OfSync(tap, SyncType)]));
    return settings;
}

MBlockRamp MDelayParameters::RampTo(const Values& values, int index) const noexcept {
    const ParameterDefinition& record = records_[static_cast<std::size_t>(index)];
    // Taken from a value that may have been written from outside the range, or be no number at all.
    return {record.Nearest(record.previous), values[static_cast<std::size_t>(index)]};
}

void MDelayParameters::KeepRampEnds(const MDelaySettings& settings) noexcept {
    for (int tap = 0; tap < kDelayTaps; ++tap) {
        const MDelayTapSettings& used = settings.taps[tap];
        Tap(tap, Feedback).previous = used.feedback.End();
        Tap(tap, Gain).previous = used.gain.End();
        Tap(tap, Panorama).previous = used.panorama.End();
    }
}

bool MDelayParameters::UpdateEnabled() noexcept {
    bool isChanged = false;
    for (int tap = 0; tap < kDelayTaps; ++tap) {
        const bool isFree = !Sync(tap, SyncPanel).IsOn();
        ParameterDefinition& delay = Tap(tap, Delay);
        isChanged = isChanged || delay.IsEnabled() != isFree;
        delay.SetEnabled(isFree);
    }
    return isChanged;
}
