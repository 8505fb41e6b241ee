// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "hosts/vst2/VstOpcodes.h"
#include "hosts/vst2/VstTypes.h"
#include "plugin/MTransport.h"

namespace Vst2 {

/// Takes over what a host says about its transport. Numbers that cannot be meant (not finite, a
/// tempo or a time signature of nothing) leave what was known before. One thread only.
class MVSTTransport {
public:
    /// What Update wants of the host.
    static constexpr VstInt32 kFields = kVstTransportChanged | kVstTransportPlaying |
                                        kVstTransportCycleActive | kVstAutomationWriting |
                                        kVstAutomationReading | kVstPpqPosValid | kVstTempoValid |
                                        kVstBarsValid | kVstCyclePosValid | kVstTimeSigValid;
    /// What UpdatePosition wants.
    static constexpr VstInt32 kPositionFields =
        kVstPpqPosValid | kVstTempoValid | kVstBarsValid | kVstTimeSigValid;

    /// Everything, at the start of a block. A move of more than two quarter notes while playing is
    /// a jump; the block that jumps leaves the playing state as it was. [audio]
    void Update(const VstTimeInfo& time, MTransport& transport) noexcept;

    /// Position, tempo, time signature and start of the bar alone. [audio]
    static void UpdatePosition(const VstTimeInfo& time, MTransport& transport) noexcept;

private:
    double lastPosition_ = 0;  // quarter notes, of the last block that played
};

}  // namespace Vst2
