// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/midi/MMIDILearn.h"

namespace {

using Kind = MMIDIMessage::Kind;

bool IsOfInterest(const MMIDIMessage& message) noexcept {
    const bool movesNothing = message.kind == Kind::None || message.kind == Kind::NoteOff ||
                              message.kind == Kind::ProgramChange;
    return !movesNothing && !message.IsChannelMode();
}

MMIDILearn::Wanted OfferOf(const MMIDIMessage& message) noexcept {
    return message.kind == Kind::NoteOn ? MMIDILearn::Wanted::Note : MMIDILearn::Wanted::Controller;
}

MControllerSource SourceOf(Kind kind, int number, int channel) noexcept {
    MControllerSource source{.number = number, .channel = channel};
    if (kind == Kind::PitchBend) source.kind = MControllerSource::Kind::PitchBend;
    if (kind == Kind::ChannelAftertouch) source.kind = MControllerSource::Kind::ChannelAftertouch;
    if (kind == Kind::PolyAftertouch) source.kind = MControllerSource::Kind::PolyAftertouch;
    return source;
}

}  // namespace

void MMIDILearn::Arm(std::uint32_t identifier, Wanted wanted) noexcept {
    identifier_ = identifier;
    ++serial_;
    armed_.store(std::uint64_t{serial_} << 32 | static_cast<std::uint64_t>(wanted));
}

void MMIDILearn::Cancel() noexcept {
    ++serial_;  // what is being learned at this moment is of no interest either
    armed_.store(0);
}

void MMIDILearn::Offer(const MMIDIMessage& message) noexcept {
    std::uint64_t armed = armed_.load(std::memory_order_relaxed);
    if (armed == 0 || !IsOfInterest(message)) return;
    const auto offer = static_cast<std::uint64_t>(OfferOf(message));
    if ((armed & offer) == 0) return;
    // Another Arm or a Cancel may have come between.
    if (!armed_.compare_exchange_strong(armed, 0)) return;
    const std::uint64_t serial = armed >> 32 << 32;
    const auto kind = static_cast<std::uint64_t>(message.kind);
    learned_.store(serial | kind << 16 | std::uint64_t{message.channel} << 8 | message.number);
}

std::optional<MMIDILearned> MMIDILearn::Take() noexcept {
    const std::uint64_t learned = learned_.exchange(0);
    if (learned == 0 || learned >> 32 != serial_) return std::nullopt;
    const auto kind = static_cast<Kind>(learned >> 16 & 0xFF);
    const auto channel = static_cast<int>(learned >> 8 & 0xFF);
    const auto number = static_cast<int>(learned & 0xFF);
    return MMIDILearned{identifier_, kind == Kind::NoteOn, SourceOf(kind, number, channel), number,
                        channel};
}
