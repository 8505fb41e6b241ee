// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "core/MGuard.h"
#include "plugin/MAudioPlugin.h"

#include <utility>

namespace {
// Far below what anybody hears, and still another number for a host that compares.
constexpr double kNudge = 1e-10;
}  // namespace

MAudioPlugin::AutomationAdapter& MAudioPlugin::CreateTemporaryAutomationAdapter(
    std::uint32_t firstIdentifier, int count) {
    auto adapter = std::make_unique<AutomationAdapter>(this, firstIdentifier, count);
    const MLock lock(temporaryMutex_);
    return *temporaryAdapters_.emplace_back(std::move(adapter));
}

void MAudioPlugin::DestroyTemporaryAutomationAdapters() {
    std::vector<std::unique_ptr<AutomationAdapter>> dropped;  // freed once the lock is given back
    const MLock lock(temporaryMutex_);
    dropped.swap(temporaryAdapters_);
}

void MAudioPlugin::AutomationAdapter::SendAutomation(int index) noexcept {
    if (plugin_ == nullptr) return;
    Guard<MExceptionPolicy::Swallow>("MAudioPlugin::AutomationAdapter::SendAutomation", [&] {
        const std::uint32_t identifier = Identifier(index);
        plugin_->SendHostAutomation(identifier, plugin_->GetParameter(identifier));
    });
}

void MAudioPlugin::AutomationAdapter::SendAutomationValue(int index, double x) noexcept {
    if (plugin_ == nullptr) return;
    Guard<MExceptionPolicy::Swallow>("MAudioPlugin::AutomationAdapter::SendAutomationValue",
                                     [&] { plugin_->SendHostAutomation(Identifier(index), x); });
}

void MAudioPlugin::AutomationAdapter::SendAutomationValueWithChange(int index, double x) noexcept {
    if (plugin_ == nullptr) return;
    Guard<MExceptionPolicy::Swallow>(
        "MAudioPlugin::AutomationAdapter::SendAutomationValueWithChange", [&] {
            const std::uint32_t identifier = Identifier(index);
            plugin_->SendHostAutomation(identifier, x > kNudge ? x - kNudge : x + kNudge);
            plugin_->SendHostAutomation(identifier, x);
        });
}

void MAudioPlugin::AutomationAdapter::SendAllAutomation() noexcept {
    Guard<MExceptionPolicy::Swallow>("MAudioPlugin::AutomationAdapter::SendAllAutomation", [&] {
        for (int index = 0; index < count_; ++index) SendAutomation(index);
    });
}

void MAudioPlugin::AutomationAdapter::ParameterChanged(int index, std::uint32_t offset,
                                                       double oldValue, double newValue) noexcept {
    if (plugin_ == nullptr) return;
    const std::uint32_t identifier = firstIdentifier_ + static_cast<std::uint32_t>(index) + offset;
    plugin_->ParameterChanged(identifier, oldValue, newValue);
}

std::uint32_t MAudioPlugin::AutomationAdapter::Identifier(int index) const {
    if (index < 0 || index >= count_) throw MException("Index out of range.");
    return firstIdentifier_ + static_cast<std::uint32_t>(index);
}
