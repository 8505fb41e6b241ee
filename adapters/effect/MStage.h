// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/effect/MStandardSettings.h"
#include "adapters/effect/MStateHandOver.h"
#include "adapters/effect/MStateRecords.h"
#include "adapters/midi/MMIDISettings.h"
#include "adapters/modulation/MModulationSettings.h"
#include "plugin/MArchive.h"
#include "plugin/MEffectHandle.h"

#include <memory>
#include <optional>

/// A state on its way into a plug-in or out of it: read and checked, or about to be written, as a
/// whole, while the plug-in goes on with its own. Belongs to the one thread that loads or saves;
/// plug-ins with more in their states derive from it.
struct MStage {
    MStage() = default;
    virtual ~MStage() = default;
    MStage(const MStage&) = delete;
    MStage& operator=(const MStage&) = delete;

    MStandardSettings standard;
    MModulationSettings modulation;
    std::optional<MMIDISettings> midi;  ///< none: what MIDI does stays as it is
    MStateRecords::Values values;
    bool isComplete = false;               ///< all of a state has been read
    std::unique_ptr<MEffectHandle> spare;  ///< reads and writes for the effects
    MStateHandOver::Publication retired;   ///< what it has replaced
};

/// An archive on the way through one plug-in, with the stage that values come from or go to.
class MStagingArchive final : public MArchive {
public:
    MStagingArchive(const MArchive& archive, MStage& stage) noexcept
        : MArchive(archive), stage_(stage) {}

    MStage& Stage() const noexcept { return stage_; }

private:
    MStage& stage_;
};
