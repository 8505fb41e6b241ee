// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MBlockRamp.h"
#include "plugin/MTempoSync.h"

inline constexpr int kDelayTaps = 2;
inline constexpr int kDelayMaxChannels = 8;
inline constexpr double kDelayLongest = 0.5;  ///< seconds, of a tap without synchronisation

/// How a tap's loop is fed; the order is stored in presets.
enum class MDelayMode {
    Default = 0,   ///< the first echo carries the feedback
    Classic = 1,   ///< the first echo does not
    PingPong = 2,  ///< as Classic, each side fed by the other side's echo; in stereo only
};

/// One tap's settings as one block needs them.
struct MDelayTapSettings {
    bool isEnabled = false;
    MBlockRamp feedback{0, 0};  ///< square root of the amplitude
    MBlockRamp gain{0, 0};      ///< square root of the amplitude
    MBlockRamp panorama{0, 0};  ///< -1 left to 1 right
    double delay = 0;           ///< seconds
    double leftOffset = 0;      ///< seconds; negative delays the other side
    double rightOffset = 0;     ///< seconds; negative delays the other side
    MDelayMode mode = MDelayMode::Classic;
    bool isFrozen = false;
    bool isSynchronised = false;
    int syncLength = MTempoSync::kDefaultLength;
    MTempoSync::Type syncType = MTempoSync::Type::Straight;
};

/// All that the engine reads of the records, taken once per block or update. The first four matter
/// to updates only.
struct MDelaySettings {
    bool filtersFeedback = false;
    double minFrequency = 20;     ///< hertz
    double maxFrequency = 20000;  ///< hertz
    double resonance = 0.5;       ///< 0 to 1
    bool isSerial = false;
    double saturation = 0;  ///< 0 to 1
    MDelayTapSettings taps[kDelayTaps];
};
