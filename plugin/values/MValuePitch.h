// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/values/MValueFrequency.h"

#include <cstdint>
#include <string_view>

/// A MIDI note number, shown as a note: "C4" is 60, middle C; black keys are spelled with sharps.
class MValueMIDINote : public MValueRule<MValueMIDINote, MValueNumber<std::int32_t>> {
public:
    static constexpr const char* kTypeName = "MValueMIDINote";

    using MValueRule::MValueRule;

    /// A note name at the start of a text and what follows it.
    struct LeadingNote {
        std::int32_t note;
        std::string_view rest;  ///< without surrounding blanks; borrows from the text
    };

    /// The name and octave of a note number, which may lie outside of MIDI's range. [any]
    static std::string Format(std::int32_t note);
    /// The number of a typed note: a name in any case with sharps ("#") or flats ("b") and its
    /// octave, or the number itself. [any]
    static std::optional<std::int32_t> Parse(const std::string& text);
    /// Reads the note name that `text` begins with. [any]
    static std::optional<LeadingNote> ReadLeadingNote(std::string_view text);
};

/// A frequency in hertz, shown as the nearest note and the distance from it: "A4 (+12 cents)". A4
/// is 440 Hz. A frequency that is no pitch, zero or less, is shown in hertz.
class MValuePitch : public MValueRule<MValuePitch, MValueLogarithmic> {
public:
    static constexpr const char* kTypeName = "MValuePitch";

    using MValueRule::MValueRule;

    /// The text of a frequency in hertz. [any]
    static std::string Format(double hertz);
    /// The hertz of a typed pitch: a note name, with or without cents ("A4", "a4 +12", "A4 (-5
    /// cents)"), or whatever MValueFrequency::Parse reads. [any]
    static std::optional<double> Parse(const std::string& text);
};
