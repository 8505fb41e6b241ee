// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <span>

/// The Fourier transform of 4096 real numbers, behind which the FFT package stands.
///
/// Spectra are packed into 4096 numbers: the real bins 0 and 2048 first, then real and imaginary
/// part of each bin between them. Neither direction scales: back and forth multiplies by 4096.
class MRealFFT {
public:
    static constexpr int kOrder = 12;
    static constexpr int kSize = 1 << kOrder;
    static constexpr float kScale = 1.0f / kSize;

    /// Memory for samples or a spectrum: aligned, with room that the transform needs for itself.
    struct Buffer {
        std::span<const float, kSize> Values() const noexcept {
            return std::span(memory).first<kSize>();
        }
        std::span<float, kSize> Values() noexcept { return std::span(memory).first<kSize>(); }

        alignas(64) std::array<float, kSize + 16> memory{};
    };

    /// The transforms of this process. The first call makes the plans, without measuring; it
    /// allocates and takes a lock. [main]; later calls [any].
    static const MRealFFT& Instance();

    /// Somebody who may transform at any time. The plans go when the library is unloaded, unless
    /// there still is one: a host may end the process while its blocks run. [main]
    class User {
    public:
        User() noexcept { users_.fetch_add(1); }
        ~User() { users_.fetch_sub(1); }
        User(const User&) = delete;
        User& operator=(const User&) = delete;
    };

    /// `spectrum` = transform of `samples`, which stay as they are. [audio]
    void Forward(const Buffer& samples, Buffer& spectrum) const noexcept;

    /// `samples` = inverse transform of `spectrum`, which is used up. [audio]
    void Inverse(Buffer& spectrum, Buffer& samples) const noexcept;

    MRealFFT(const MRealFFT&) = delete;
    MRealFFT& operator=(const MRealFFT&) = delete;

private:
    struct Ending;

    MRealFFT();
    ~MRealFFT() = default;

    void* forward_ = nullptr;  // the package's plans
    void* inverse_ = nullptr;

    static inline std::atomic<int> users_{0};
};
