// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValuePitch.h"

#include "core/MFormat.h"
#include "core/MText.h"
#include "plugin/values/MTypedNumber.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace {

constexpr const char* kNames[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};
constexpr int kLetterSemitones[] = {9, 11, 0, 2, 4, 5, 7};  // A to G, from C upwards
constexpr int kOctave = 12;
constexpr int kLargestOctave = 1000000;  // far beyond hearing, and far from overflow
constexpr int kReferenceNote = 69;       // A4
constexpr double kReferenceHertz = 440;

struct Accidental {
    std::string_view sign;
    int semitones;
};
constexpr Accidental kAccidentals[] = {{"#", 1}, {"♯", 1}, {"b", -1}, {"B", -1}, {"♭", -1}};

// The cents in what follows a note name: "+12", "(-5 cents)", "12c" or nothing.
std::optional<double> ReadCents(std::string_view text) {
    if (text.empty()) return 0.0;
    if (text.starts_with('(') && text.ends_with(')')) text = text.substr(1, text.size() - 2);
    return MReadTypedNumber(text, {{"cents", 1}, {"cent", 1}, {"ct", 1}, {"c", 1}});
}

}  // namespace

std::string MValueMIDINote::Format(std::int32_t note) {
    const std::int32_t place = ((note % kOctave) + kOctave) % kOctave;
    const std::int64_t base = std::int64_t{note} - place;
    return MFormat("{0}{1}", kNames[place], base / kOctave - 1);
}

std::optional<MValueMIDINote::LeadingNote> MValueMIDINote::ReadLeadingNote(std::string_view text) {
    text = MText::Trim(text);
    if (text.empty()) return std::nullopt;
    const char letter = MText::ToLower(text.substr(0, 1)).front();
    if (letter < 'a' || letter > 'g') return std::nullopt;
    int semitones = kLetterSemitones[letter - 'a'];
    text.remove_prefix(1);

    for (const Accidental& accidental : kAccidentals) {
        if (!text.starts_with(accidental.sign)) continue;
        semitones += accidental.semitones;
        text.remove_prefix(accidental.sign.size());
        break;
    }
    text = MText::Trim(text);
    int octave = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), octave);
    if (error != std::errc() || std::abs(octave) > kLargestOctave) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return LeadingNote{(octave + 1) * kOctave + semitones, MText::Trim(text)};
}

std::optional<std::int32_t> MValueMIDINote::Parse(const std::string& text) {
    const std::optional<LeadingNote> leading = ReadLeadingNote(text);
    if (!leading) return MValueNumber::Parse(text);
    return leading->rest.empty() ? std::optional(leading->note) : std::nullopt;
}

std::string MValuePitch::Format(double hertz) {
    if (!(hertz > 0) || !std::isfinite(hertz)) return MValueFrequency::Format(hertz);
    const double pitch = kReferenceNote + kOctave * (std::log2(hertz) - std::log2(kReferenceHertz));
    const double note = std::floor(pitch + 0.5);
    const auto cents = static_cast<std::int32_t>(std::floor(100 * (pitch - note) + 0.5));
    const std::string name = MValueMIDINote::Format(static_cast<std::int32_t>(note));
    return MFormat("{0} ({1+} cents)", name, cents);
}

std::optional<double> MValuePitch::Parse(const std::string& text) {
    const auto leading = MValueMIDINote::ReadLeadingNote(text);
    if (!leading) return MValueFrequency::Parse(text);
    const std::optional<double> cents = ReadCents(leading->rest);
    if (!cents) return std::nullopt;
    const double pitch = leading->note + 0.01 * *cents;
    const double hertz = kReferenceHertz * std::exp2((pitch - kReferenceNote) / kOctave);
    return std::isfinite(hertz) ? std::optional(hertz) : std::nullopt;
}
