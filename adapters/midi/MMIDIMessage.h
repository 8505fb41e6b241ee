// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

/// A MIDI message of a channel, as far as anything here listens to it.
struct MMIDIMessage {
    enum class Kind : std::uint8_t {
        None,  ///< anything else
        NoteOff,
        NoteOn,
        PolyAftertouch,
        Controller,
        ProgramChange,
        ChannelAftertouch,
        PitchBend
    };

    /// Bytes that are no such message, or none at all, give Kind::None; a note on without velocity
    /// is a note off. [any]
    static MMIDIMessage Parse(const std::array<std::uint8_t, 4>& data) noexcept;

    /// Whether every note of the channel ends: all sound or notes off, and what implies it. [any]
    bool EndsNotes() const noexcept;
    /// Whether it is a controller of those that say something about the channel itself. [any]
    bool IsChannelMode() const noexcept;

    Kind kind = Kind::None;
    std::uint8_t channel = 0;  ///< 1..16
    std::uint8_t number = 0;   ///< 0..127: note, controller or program; 0 where there is none
    std::uint16_t value = 0;   ///< 0..127, of a pitch bend 0..16383 with the middle at 8192
};
