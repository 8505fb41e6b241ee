// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/crossover/MLinearPhaseCrossover.h"

MLinearPhaseCrossover::MLinearPhaseCrossover() = default;
MLinearPhaseCrossover::~MLinearPhaseCrossover() = default;

void MLinearPhaseCrossover::Design(int bandCount, std::span<const double> frequencies,
                                   double sampleRate, bool fixedQ) {
    const MCrossoverPoints points = CheckCrossoverPoints(bandCount, frequencies, sampleRate);
    Reserve();
    owned_->designer.Design(points, fixedQ, owned_->designs.Back());
    owned_->designs.Publish();
    memory_.store(owned_.get(), std::memory_order_release);
}

void MLinearPhaseCrossover::Reserve() {
    std::call_once(isReserved_, [&] {
        MRealFFT::Instance();
        owned_ = std::make_unique<Memory>();
    });
}

void MLinearPhaseCrossover::BeginBlock() noexcept {
    Memory* const memory = memory_.load(std::memory_order_acquire);
    if (memory == nullptr) return;
    if (memory->designs.Adopt()) design_ = &memory->designs.Front();
}
