// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/presets/MPresetSwitcher.h"

#include "core/MGuard.h"

#include <utility>

void MPresetSwitcher::SetStep(Step step) { step_ = std::move(step); }

void MPresetSwitcher::Start() {
    if (worker_ != nullptr) return;
    worker_ = MBackgroundWorker::Acquire();
    worker_->Add(*this);
    started_.store(worker_.get());
    PostStep(0);  // what has come in before
}

void MPresetSwitcher::Stop() {
    if (worker_ == nullptr) return;
    worker_->Remove(*this);
    started_.store(nullptr);
    worker_.reset();
}

void MPresetSwitcher::PostStep(int steps) noexcept {
    steps_.fetch_add(steps);
    if (MBackgroundWorker* const worker = started_.load()) worker->Ask(*this);
}

void MPresetSwitcher::Work() noexcept {
    const int steps = steps_.exchange(0);
    if (steps == 0) return;
    Guard("MPresetSwitcher::Work", [&] { step_(steps); });
}
