// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayTapLoop.h"

#include "effects/delay/MDelayEngine.h"

#include <algorithm>

namespace {

/// Neither a resonant filter nor the even part of the saturation may run away with the loop: it
/// comes back as soon as the feedback or the level does. Sound below +20 dB is untouched.
constexpr float kLoopLimit = 10;

void Limit(double* samples, int count) noexcept {
    constexpr auto kHigh = static_cast<double>(kLoopLimit);
    for (int i = 0; i < count; ++i) samples[i] = std::clamp(samples[i], -kHigh, kHigh);
}

}  // namespace

MDelayTapLoop::MDelayTapLoop(MDelayTap& tap, MDelayMode mode, const MLoopRamps& ramps,
                             const Surroundings& surroundings) noexcept
    : tap_(tap),
      surroundings_(surroundings),
      isStereo_(tap.Channels() == 2),
      isPingPong_(mode == MDelayMode::PingPong && isStereo_),
      mix_(mode == MDelayMode::Default ? MLoopMix::Default : MLoopMix::Classic),
      ramps_(ramps) {}

void MDelayTapLoop::Run(const float* const* inputs, float* const* outputs, int count) noexcept {
    Piece piece;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled piece by piece
    for (int channel = 0; channel < tap_.Channels(); channel += 2) {
        piece.channel = channel;
        piece.channels = std::min(2, tap_.Channels() - channel);
        RunChannels(piece, inputs + channel, outputs + channel, count);
    }
}

void MDelayTapLoop::RunChannels(Piece& piece, const float* const* inputs, float* const* outputs,
                                int count) noexcept {
    const bool isPlain = IsPlain();
    for (piece.start = 0; piece.start < count; piece.start += piece.count) {
        piece.count = std::min(kPiece, count - piece.start);
        for (int side = 0; side < piece.channels; ++side) {
            piece.count = std::min(piece.count, tap_.Line(piece.channel + side).Contiguous());
        }
        for (int side = 0; side < piece.channels; ++side) {
            piece.line[side] =
                tap_.Line(piece.channel + side).Open(piece.count, piece.moving[side]);
        }
        ramps_.first = piece.start;
        if (isPlain) {
            RunPlain(piece, inputs, outputs);
        } else if (isStereo_ && IsDirect()) {
            TakeInput(piece, inputs);
            RunPanned(piece, outputs);
        } else {
            TakeInput(piece, inputs);
            RunLoop(piece);
            PassEchoesOn(piece, outputs);
        }
        for (int side = 0; side < piece.channels; ++side) {
            tap_.Line(piece.channel + side).Close(piece.line[side], piece.count);
        }
    }
}

void MDelayTapLoop::TakeInput(Piece& piece, const float* const* inputs) noexcept {
    for (int side = 0; side < piece.channels; ++side) {
        piece.input[side] = inputs[side] + piece.start;
        if (tap_.UsesPredelay()) {
            tap_.Predelay(side).Exchange(piece.input[side], piece.delayed[side], piece.count);
            piece.input[side] = piece.delayed[side];
        }
    }
}

bool MDelayTapLoop::IsDirect() const noexcept {
    return !isPingPong_ && !surroundings_.filters.FiltersFeedback() &&
           surroundings_.saturation == nullptr && surroundings_.freeze == nullptr;
}

/// Whether echoes go straight round and straight out.
bool MDelayTapLoop::IsPlain() const noexcept {
    const bool isCentred = ramps_.panorama.start == 0 && ramps_.panorama.step == 0;
    return IsDirect() && (isCentred || !isStereo_);
}

void MDelayTapLoop::RunPlain(Piece& piece, const float* const* inputs,
                             float* const* outputs) noexcept {
    const double share = isStereo_ ? 2 : 1;
    MPlainLoop loop = {.mix = mix_,
                       .feedback = ramps_.feedback,
                       .factor = {share * ramps_.gain.start, share * ramps_.gain.step},
                       .adds = surroundings_.adds};
    for (int side = 0; side < piece.channels; ++side) {
        const float* input = inputs[side] + piece.start;
        float* const output = outputs[side] + piece.start;
        float* const line = piece.line[side];
        int done = 0;
        loop.first = piece.start;
        if (tap_.UsesPredelay()) {
            MDelayLine& predelay = tap_.Predelay(side);
            // Behind a predelay of one sample, the usual one, all but a few samples are read where
            // they lie; not where the outputs are the inputs and would run over them.
            const bool staysInPlace =
                predelay.Length() == 1 && piece.count > kHead && input != output;
            const int moved = staysInPlace ? kHead : piece.count;
            predelay.Exchange(input, piece.delayed[side], moved);
            if (staysInPlace) {
                surroundings_.kernels.exchangeAndOutput(loop, piece.delayed[side], line, output,
                                                        kLoopCeiling, kHead);
                done = kHead;
                input -= 1;
                predelay.Exchange(input[piece.count]);
            } else {
                input = piece.delayed[side];
            }
        }
        loop.first = piece.start + done;
        surroundings_.kernels.exchangeAndOutput(loop, input + done, line + done, output + done,
                                                kLoopCeiling, piece.count - done);
    }
}

void MDelayTapLoop::RunPanned(Piece& piece, float* const* outputs) noexcept {
    float* const output[2] = {outputs[0] + piece.start, outputs[1] + piece.start};
    surroundings_.kernels.exchangePanned({mix_, ramps_, surroundings_.adds}, piece.input,
                                         piece.line, output, kLoopCeiling, piece.count);
}

void MDelayTapLoop::RunLoop(Piece& piece) noexcept {
    const MDelayKernels& kernels = surroundings_.kernels;
    const bool isDirect = IsDirect();
    if (!isDirect) MixLoop(piece);
    // A frozen loop keeps what it holds, however loud; there MixLoop has limited the rest.
    const bool isLimited = surroundings_.saturation != nullptr && surroundings_.freeze == nullptr;
    const float ceiling = isLimited ? kLoopLimit : kLoopCeiling;
    for (int side = 0; side < piece.channels; ++side) {
        if (isDirect) {
            kernels.exchange(mix_, ramps_, piece.input[side], piece.line[side], piece.echo[side],
                             kLoopCeiling, piece.count);
        } else {
            kernels.store(piece.loop[side], piece.line[side], ceiling, piece.count);
        }
    }
}

void MDelayTapLoop::MixLoop(Piece& piece) noexcept {
    const MDelayKernels& kernels = surroundings_.kernels;
    for (int side = 0; side < piece.channels; ++side) {
        std::copy_n(piece.line[side], piece.count, piece.echo[side]);
    }
    double* const loop[2] = {piece.loop[0], piece.loop[1]};
    if (isPingPong_) {
        const float* const echo[2] = {piece.echo[0], piece.echo[1]};
        kernels.mixPingPong(ramps_, piece.input, echo, loop, piece.count);
    } else {
        for (int side = 0; side < piece.channels; ++side) {
            kernels.mixLoop(mix_, ramps_, piece.input[side], piece.echo[side], loop[side],
                            piece.count);
        }
    }
    if (surroundings_.filters.FiltersFeedback()) {
        kernels.filterLoop(surroundings_.filters.ForFeedback(tap_.FilterStates(), piece.channel),
                           static_cast<double>(kLoopLimit), loop, piece.channels, piece.count);
    }
    for (int side = 0; side < piece.channels; ++side) {
        if (surroundings_.saturation != nullptr) {
            kernels.saturate(*surroundings_.saturation, loop[side], piece.count);
            if (surroundings_.freeze != nullptr) Limit(loop[side], piece.count);
        }
        if (surroundings_.freeze != nullptr) {
            kernels.freeze(surroundings_.freeze[piece.channel + side] + piece.start,
                           piece.echo[side], loop[side], piece.count);
        }
    }
}

void MDelayTapLoop::PassEchoesOn(const Piece& piece, float* const* outputs) const noexcept {
    const MDelayKernels& kernels = surroundings_.kernels;
    for (int side = 0; side < piece.channels && !surroundings_.adds; ++side) {
        std::fill_n(outputs[side] + piece.start, piece.count, 0.0f);
    }
    if (isStereo_ && !isPingPong_) {
        const float* const echo[2] = {piece.echo[0], piece.echo[1]};
        float* const output[2] = {outputs[0] + piece.start, outputs[1] + piece.start};
        kernels.addPanned(ramps_, echo, output, piece.count);
        return;
    }
    for (int side = 0; side < piece.channels; ++side) {
        float* const output = outputs[side] + piece.start;
        if (isPingPong_) {
            // The input was panned already.
            kernels.add(piece.echo[side], output, piece.count);
        } else {
            kernels.addScaled(ramps_, piece.echo[side], output, piece.count);
        }
    }
}
