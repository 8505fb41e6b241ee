// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MMultiParameters.h"

#include <string>

namespace {

// The modes' numbers are the places of their events within the bits of one MultiParameter.
constexpr int kModes = 3;
constexpr std::uint32_t Event(int index, MMultiParameterMode mode) {
    return 1U << (index * kModes + static_cast<int>(mode));
}

}  // namespace

MMultiParameters::MMultiParameters() {
    for (int index = 0; index < kCount; ++index) {
        records_[index].DefineFloat("MultiParameter" + std::to_string(index),
                                    "MultiParameter " + std::to_string(index + 1), 0, 1, 0,
                                    std::string());
    }
}

void MMultiParameters::AddParameters(MParameterTable& table) {
    for (int index = 0; index < kCount; ++index) {
        table.Add(records_[index], records_[index].name, records_[index].name, this, index);
    }
}

void MMultiParameters::ParameterChanged(int index, std::uint32_t /*offset*/, double oldValue,
                                        double newValue) noexcept {
    const bool wasOn = IsHigh(oldValue), isOn = IsHigh(newValue);
    std::uint32_t events = Event(index, MMultiParameterMode::Continuous);
    if (wasOn != isOn) events |= Event(index, MMultiParameterMode::Switch);
    if (!wasOn && isOn) events |= Event(index, MMultiParameterMode::Momentary);
    events_.fetch_or(events, std::memory_order_release);
}

bool MMultiParameters::TakeEvent(int index, MMultiParameterMode mode) noexcept {
    constexpr std::uint32_t kAll = (1U << kModes) - 1;
    const std::uint32_t own = kAll << (index * kModes);
    if ((events_.load(std::memory_order_relaxed) & own) == 0) return false;
    return (events_.fetch_and(~own, std::memory_order_acquire) & Event(index, mode)) != 0;
}
