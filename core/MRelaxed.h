// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>

/// Plain members that several threads read and write without a lock, one aligned value at a time: a
/// reader sees the old or the new value, never a mixture, and nothing is said about other members.
/// Every access to such a member goes through these two.
namespace MRelaxed {

/// The value of `member`. [any]
template <class T>
T Load(const T& member) noexcept {
    // The standard's reference takes no constant objects; reading through it changes nothing.
    return std::atomic_ref<T>(const_cast<T&>(member)).load(std::memory_order_relaxed);
}

/// Stores `value` in `member`. [any]
template <class T>
void Store(T& member, T value) noexcept {
    std::atomic_ref<T>(member).store(value, std::memory_order_relaxed);
}

}  // namespace MRelaxed
