// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MGrowingBuffer.h"
#include "plugin/MBusLayout.h"

#include <array>

/// One block as an effect may rely on it: every channel is there, whatever the host has handed
/// over. Channels that are there are passed on as they are.
class MBlockChannels {
public:
    /// Makes room for blocks of `channels` and `count` samples: for both operations below. [setup]
    void Reserve(int channels, int count);

    /// Takes a host's block of `layout`; null arrays and channels are allowed. Allocates when
    /// `count` exceeds every block so far and what was reserved. [audio]
    void Take(const MBusLayout& layout, const float* const* inputs, float* const* outputs,
              int count);

    /// Lets outputs be written piece by piece: inputs that share memory with outputs at another
    /// place than sample for sample are copied. Allocates as Take does; once per Take. [audio]
    void SeparateInputs(int channels, int count);

    /// [layout.outputs][count], valid until the next Take. [audio]
    const float* const* Inputs() const noexcept { return inputs_.data(); }
    /// The same; what is written for a channel that the host left out is lost. [audio]
    float* const* Outputs() const noexcept { return outputs_.data(); }

private:
    /// Memory for one channel, until the next Take.
    float* Spare(int count) { return spares_[spareCount_++].Get(count); }

    std::array<const float*, MBusLayout::kMaxChannels> inputs_{};
    std::array<float*, MBusLayout::kMaxChannels> outputs_{};
    // For silence, for what is not heard and for copies of inputs. A channel without an input has
    // none to copy, and where no output is heard none is shared.
    static constexpr int kSpares = 2 * MBusLayout::kMaxChannels;
    std::array<MGrowingBuffer<float>, kSpares> spares_;
    int spareCount_ = 0;
};
