// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/midi/MMIDIMessage.h"

MMIDIMessage MMIDIMessage::Parse(const std::array<std::uint8_t, 4>& data) noexcept {
    const bool isData = data[1] < 0x80 && data[2] < 0x80;
    const auto channel = static_cast<std::uint8_t>((data[0] & 0x0F) + 1);
    const std::uint8_t first = data[1];
    const std::uint8_t second = data[2];
    // One data byte only: what follows may be anything.
    if ((data[0] & 0xF0) == 0xC0 && first < 0x80) return {Kind::ProgramChange, channel, first, 0};
    if ((data[0] & 0xF0) == 0xD0 && first < 0x80) {
        return {Kind::ChannelAftertouch, channel, 0, first};
    }
    if (!isData) return {};
    switch (data[0] & 0xF0) {
        case 0x80:
            return {Kind::NoteOff, channel, first, second};
        case 0x90:
            return {second > 0 ? Kind::NoteOn : Kind::NoteOff, channel, first, second};
        case 0xA0:
            return {Kind::PolyAftertouch, channel, first, second};
        case 0xB0:
            return {Kind::Controller, channel, first, second};
        case 0xE0:
            return {Kind::PitchBend, channel, 0, static_cast<std::uint16_t>((second << 7) | first)};
        default:
            return {};
    }
}

bool MMIDIMessage::IsChannelMode() const noexcept {
    return kind == Kind::Controller && number >= 120;
}

bool MMIDIMessage::EndsNotes() const noexcept {
    return IsChannelMode() && (number == 120 || number >= 123);
}
