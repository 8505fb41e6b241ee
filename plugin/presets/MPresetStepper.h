// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What moves through the list of presets.
class MPresetStepper {
public:
    /// Asks for the preset `steps` places further on (negative: back). Must neither wait, allocate
    /// nor throw: the preset is loaded later, on a thread that may take its time. [audio]
    virtual void PostStep(int steps) noexcept = 0;

protected:
    ~MPresetStepper() = default;
};
