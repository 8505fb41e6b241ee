// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What moves through the list of presets.
class MPresetStepper {
public:
    /// Gets ready to make steps, since blocks are about to run; again without effect. Until then
    /// they are kept. [main]
    virtual void Start() {}
    /// Waits for a step that is being made; none is made after it. There must be no blocks any
    /// more. [main]
    virtual void Stop() {}
    /// Asks for the preset `steps` places further on (negative: back). Must neither wait, allocate
    /// nor throw: the preset is loaded later, on a thread that may take its time. [audio]
    virtual void PostStep(int steps) noexcept = 0;
    /// Asks in the same way for the preset at `place` in the list, from 0; steps that are still to
    /// be made are not any more. [audio]
    virtual void PostPlace(int /*place*/) noexcept {}

protected:
    ~MPresetStepper() = default;
};
