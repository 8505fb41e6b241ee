// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MBackgroundWorker.h"
#include "plugin/presets/MPresetStepper.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

/// Takes steps through the presets, and places in their list, from the audio thread to the
/// background worker, which loads them. Steps that come in while one is made add up; of several
/// places the last one counts, and the steps after it.
class MPresetSwitcher final : public MPresetStepper, private MBackgroundWorker::Task {
public:
    /// Loads the preset so many places further on; may take its time and throw.
    using Step = std::function<void(int steps)>;
    /// Loads the preset at a place of the list, from 0; the same holds.
    using Choice = std::function<void(int place)>;

    MPresetSwitcher() = default;
    ~MPresetSwitcher() override { Stop(); }

    /// Says who makes the steps; once only, before Start. [setup]
    void SetStep(Step step);
    void SetChoice(Choice choice);
    /// Starts the worker if need be. [main]
    void Start() override;
    void Stop() override;

    /// Before Start, steps are kept. [audio]
    void PostStep(int steps) noexcept override;
    void PostPlace(int place) noexcept override;

private:
    void Work() noexcept override;

    Step step_;
    Choice choice_;
    // Steps, and 2^32 times the place they start from, that counted from 1: both change at once.
    std::atomic<std::int64_t> posted_{0};
    std::shared_ptr<MBackgroundWorker> worker_;
    std::atomic<MBackgroundWorker*> started_{nullptr};
};
