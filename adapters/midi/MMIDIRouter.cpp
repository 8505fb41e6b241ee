// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/midi/MMIDIRouter.h"

#include "plugin/MAudioPlugin.h"
#include "plugin/presets/MPresetStepper.h"

#include <cmath>
#include <utility>

namespace {

using Kind = MMIDIMessage::Kind;
using Source = MControllerSource;

bool IsOnChannel(int wanted, int channel) noexcept { return wanted == 0 || wanted == channel; }

bool IsFrom(const Source& source, Source::Kind kind, const MMIDIMessage& message) noexcept {
    return source.kind == kind && IsOnChannel(source.channel, message.channel);
}

}  // namespace

void MMIDIRouter::Adopt(const MMIDIRouting& routing) noexcept {
    for (int place = 0; place < MMIDISettings::kAssignments; ++place) {
        const auto& before = routing_.controllers.routes[place];
        if (!(routing.controllers.routes[place] == before)) followers_[place] = {};
    }
    if (!(routing.presetController == routing_.presetController)) presetStep_ = 0;
    routing_ = routing;
}

void MMIDIRouter::Reset() noexcept {
    const auto& table = routing_.notes;
    for (int i = 0; i < table.count; ++i) {
        const MNoteMapping& map = table.routes[table.places[i]].mapping;
        const bool isOpen =
            map.mode == MNoteMapping::Mode::Gate && held_.IsAnyHeld(map.channel, map.note);
        if (isOpen) CloseGate(table.places[i]);
    }
    followers_ = {};
    pairs_ = {};
    held_ = {};
    presetStep_ = 0;
}

void MMIDIRouter::Apply(const MMIDIMessage& message, MMIDIListener* listener) noexcept {
    switch (message.kind) {
        case Kind::Controller:
            ProcessMIDIController(message, listener);
            break;
        case Kind::ProgramChange:
            ChoosePreset(message);
            break;
        case Kind::ChannelAftertouch:
        case Kind::PolyAftertouch:
            ProcessAftertouch(message);
            break;
        case Kind::PitchBend:
            ProcessPitchBend(message);
            break;
        case Kind::NoteOn:
        case Kind::NoteOff:
            ProcessNote(message, listener);
            break;
        case Kind::None:
            break;
    }
}

void MMIDIRouter::ProcessMIDIController(const MMIDIMessage& message,
                                        MMIDIListener* listener) noexcept {
    pairs_.Note(message);
    if (message.EndsNotes()) {
        for (int note = 0; note < MHeldNotes::kNotes; ++note) {
            ReleaseNote(message.channel, note, listener);
        }
    }
    StepPresets(message);
    const auto& table = routing_.controllers;
    for (int i = 0; i < table.count; ++i) {
        const Source& source = table.routes[table.places[i]].source;
        if (!IsFrom(source, Source::Kind::Controller, message)) continue;
        const bool isIt = message.number == source.number;
        if (source.isHighResolution && (isIt || message.number == source.number + 32)) {
            MoveController(table.places[i], pairs_.Place(message.channel, source.number));
        } else if (isIt) {
            MoveController(table.places[i], message.value / 127.0);
        }
    }
}

void MMIDIRouter::ProcessAftertouch(const MMIDIMessage& message) noexcept {
    const bool isPoly = message.kind == Kind::PolyAftertouch;
    const Source::Kind kind =
        isPoly ? Source::Kind::PolyAftertouch : Source::Kind::ChannelAftertouch;
    const auto& table = routing_.controllers;
    for (int i = 0; i < table.count; ++i) {
        const Source& source = table.routes[table.places[i]].source;
        if (!IsFrom(source, kind, message) || (isPoly && source.number != message.number)) continue;
        MoveController(table.places[i], message.value / 127.0);
    }
}

void MMIDIRouter::ProcessPitchBend(const MMIDIMessage& message) noexcept {
    constexpr int kMiddle = 8192;
    constexpr int kLast = 16383;
    // The wheel at rest is exactly the middle, and both ends are reached.
    const int bend = message.value - kMiddle;
    const double x = 0.5 + 0.5 * bend / (bend < 0 ? kMiddle : kLast - kMiddle);
    const auto& table = routing_.controllers;
    for (int i = 0; i < table.count; ++i) {
        const Source& source = table.routes[table.places[i]].source;
        if (IsFrom(source, Source::Kind::PitchBend, message)) MoveController(table.places[i], x);
    }
}

void MMIDIRouter::MoveController(int place, double x) noexcept {
    const MMIDIRouting::Controller& route = routing_.controllers.routes[place];
    MControllerFollower& follower = followers_[place];
    const double present = plugin_.GetParameter(route.identifier);
    const auto target = follower.Follow(route.mapping, x, present);
    if (target) follower.Wrote(*target, Write(place, route.identifier, *target));
}

/// The position that the parameter has taken.
double MMIDIRouter::Write(int bit, std::uint32_t identifier, double target) noexcept {
    plugin_.SetParameter(identifier, target, false);
    moved_.fetch_or(std::uint64_t{1} << bit, std::memory_order_relaxed);
    return plugin_.GetParameter(identifier);
}

void MMIDIRouter::StepPresets(const MMIDIMessage& message) noexcept {
    const MPresetController& preset = routing_.presetController;
    const bool isIt = preset.isEnabled && message.number == preset.controller &&
                      IsOnChannel(preset.channel, message.channel);
    if (!isIt) return;
    int step = 0;
    if (message.value > 0) step = message.value < 64 ? -1 : 1;
    const int before = std::exchange(presetStep_, step);
    if (step != before && step != 0 && presets_ != nullptr) presets_->PostStep(step);
}

void MMIDIRouter::ChoosePreset(const MMIDIMessage& message) noexcept {
    const MPresetPrograms& programs = routing_.presetPrograms;
    const bool isIt = programs.isEnabled && IsOnChannel(programs.channel, message.channel);
    if (isIt && presets_ != nullptr) presets_->PostPlace(message.number);
}

void MMIDIRouter::ProcessNote(const MMIDIMessage& message, MMIDIListener* listener) noexcept {
    if (message.kind == Kind::NoteOff) {
        ReleaseNote(message.channel, message.number, listener);
        return;
    }
    const double velocity = message.value / 127.0;
    held_.Press(message.channel, message.number);
    if (listener != nullptr) listener->NoteOn(message.channel, message.number, velocity);
    const auto& table = routing_.notes;
    for (int i = 0; i < table.count; ++i) {
        const MNoteMapping& map = table.routes[table.places[i]].mapping;
        const bool isIt = map.note == MNoteMapping::kAnyNote || map.note == message.number;
        if (isIt && IsOnChannel(map.channel, message.channel)) {
            PressNote(table.places[i], velocity);
        }
    }
}

void MMIDIRouter::PressNote(int place, double velocity) noexcept {
    const MMIDIRouting::Note& route = routing_.notes.routes[place];
    const MNoteMapping& map = route.mapping;
    double target = map.maxValue;
    if (map.mode == MNoteMapping::Mode::Velocity) {
        target = map.value + (map.maxValue - map.value) * velocity;
    } else if (map.mode == MNoteMapping::Mode::Toggle) {
        const double present = plugin_.GetParameter(route.identifier);
        const bool isUp = std::abs(present - map.maxValue) < std::abs(present - map.value);
        if (isUp) target = map.value;
    }
    Write(kFirstNoteBit + place, route.identifier, target);
}

void MMIDIRouter::ReleaseNote(int channel, int note, MMIDIListener* listener) noexcept {
    if (!held_.IsHeld(channel, note)) return;
    held_.Release(channel, note);
    if (listener != nullptr) listener->NoteOff(channel, note);
    const auto& table = routing_.notes;
    for (int i = 0; i < table.count; ++i) {
        const MNoteMapping& map = table.routes[table.places[i]].mapping;
        const bool isIt = map.note == MNoteMapping::kAnyNote || map.note == note;
        if (map.mode != MNoteMapping::Mode::Gate || !isIt || !IsOnChannel(map.channel, channel)) {
            continue;
        }
        if (!held_.IsAnyHeld(map.channel, map.note)) CloseGate(table.places[i]);
    }
}

void MMIDIRouter::CloseGate(int place) noexcept {
    const MMIDIRouting::Note& route = routing_.notes.routes[place];
    Write(kFirstNoteBit + place, route.identifier, route.mapping.value);
}
