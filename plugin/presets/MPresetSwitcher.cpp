// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/presets/MPresetSwitcher.h"

#include "core/MGuard.h"

#include <utility>

namespace {

constexpr std::int64_t kPlace = std::int64_t{1} << 32;

}  // namespace

void MPresetSwitcher::SetStep(Step step) { step_ = std::move(step); }

void MPresetSwitcher::SetChoice(Choice choice) { choice_ = std::move(choice); }

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
    posted_.fetch_add(steps);
    if (MBackgroundWorker* const worker = started_.load()) worker->Ask(*this);
}

void MPresetSwitcher::PostPlace(int place) noexcept {
    posted_.store((place + 1) * kPlace);
    if (MBackgroundWorker* const worker = started_.load()) worker->Ask(*this);
}

void MPresetSwitcher::Work() noexcept {
    const std::int64_t posted = posted_.exchange(0);
    const auto steps = static_cast<std::int32_t>(posted);
    const auto place = static_cast<int>((posted - steps) / kPlace) - 1;
    if (place >= 0 && choice_) Guard("MPresetSwitcher::Work", [&] { choice_(place); });
    if (steps != 0 && step_) Guard("MPresetSwitcher::Work", [&] { step_(steps); });
}
