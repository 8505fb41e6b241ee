// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MBackgroundWorker.h"
#include "plugin/presets/MPresetStepper.h"

#include <atomic>
#include <functional>
#include <memory>

/// Takes steps through the presets from the audio thread to the background worker, which makes
/// them. Steps that come in while one is made add up.
class MPresetSwitcher final : public MPresetStepper, private MBackgroundWorker::Task {
public:
    /// Loads the preset so many places further on; may take its time and throw.
    using Step = std::function<void(int steps)>;

    MPresetSwitcher() = default;
    ~MPresetSwitcher() override { Stop(); }

    /// Says who makes the steps; once only, before Start. [setup]
    void SetStep(Step step);
    /// Starts the worker if need be. [main]
    void Start() override;
    void Stop() override;

    /// Before Start, steps are kept. [audio]
    void PostStep(int steps) noexcept override;

private:
    void Work() noexcept override;

    Step step_;
    std::atomic<int> steps_{0};
    std::shared_ptr<MBackgroundWorker> worker_;
    std::atomic<MBackgroundWorker*> started_{nullptr};
};
