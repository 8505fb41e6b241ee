// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MXML.h"
#include "plugin/MArchive.h"

/// What a plug-in around an effect offers to those inside it: the editor and the effect's own
/// surroundings. The order of the operations is part of the interface; new ones come at the end.
class MEffectAdapter {
public:
    MEffectAdapter() = default;
    MEffectAdapter(const MEffectAdapter&) = delete;
    MEffectAdapter& operator=(const MEffectAdapter&) = delete;

    virtual ~MEffectAdapter() = default;  // slot 0
    virtual void Reserved1() {}
    // The names of the next two are known from failure reports.
    // NOLINTBEGIN(readability-identifier-naming)
    /// The part of InitProcessing that no block may run beside; the caller holds the processing
    /// lock. False when it failed, which has been reported. [main]
    virtual bool InitProcessing_LockedPart() = 0;
    /// The part that tells others, without any lock held. [main]
    virtual void InitProcessing_UnLockedPart() = 0;
    // NOLINTEND(readability-identifier-naming)
    /// The part that brings displays up to date. [main]
    virtual void InitProcessingGUI() = 0;
    /// Makes the memory that blocks of the maximum size need. Under the processing lock. [main]
    virtual void UpdateMaxBufferSize() = 0;
    /// Prepares the adapter for a block of `inputs`, [channels][sampleCount], which may be null
    /// outside of a block. Does nothing while a block or InitProcessing runs. [audio]
    virtual void PrepareForProcessing(const float* const* inputs, int sampleCount) = 0;
    /// The settings of the adapter itself, written into `node` or read from there; the last thing
    /// that storing the plug-in does, and called by nobody else. A failure is reported. [main]
    virtual void StoreSettings(MXMLNode node, MArchive& archive) = 0;
    virtual void Reserved8() {}
    virtual void Reserved9() {}
    virtual void Reserved10() {}
    /// Makes ready what the presets in the active slots need: all of them, or the one in `slot`.
    /// [main]
    virtual void InitProcessingActivePresets() {}
    virtual void InitProcessingActivePresets(int /*slot*/) {}
    virtual void Reserved13() {}
    virtual void Reserved14() {}
    virtual void Reserved15() {}
    /// Puts parameters to random values within what sounds sensible. [main]
    virtual void GenerateRandomSettingsSmart() {}
    virtual void Reserved17() {}
    virtual void Reserved18() {}
};
