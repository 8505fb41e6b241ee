// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/midi/MNoteAssignment.h"

MNoteAssignment MNoteAssignment::Corrected() const {
    MNoteAssignment good = *this;
    MNoteMapping& map = good.mapping;
    if (map.note < 0 || map.note > 127) map.note = MNoteMapping::kAnyNote;
    if (map.channel < 0 || map.channel > 16) map.channel = 0;
    if (map.mode < MNoteMapping::Mode::Gate || map.mode > MNoteMapping::Mode::Toggle) {
        map.mode = MNoteMapping::Mode::Gate;
    }
    if (!(map.value >= 0 && map.value <= 1)) map.value = MNoteMapping{}.value;
    if (!(map.maxValue >= 0 && map.maxValue <= 1)) map.maxValue = MNoteMapping{}.maxValue;
    return good;
}

void MNoteAssignment::Store(MXMLNode node, const MArchive& archive) {
    archive.Switch(node, "Enabled", isEnabled);
    target.Store(node, archive);
    archive.Integer(node, "Note", mapping.note);
    archive.Integer(node, "Channel", mapping.channel);
    int mode = static_cast<int>(mapping.mode);
    archive.Integer(node, "Mode", mode);
    mapping.mode = static_cast<MNoteMapping::Mode>(mode);
    archive.Number(node, "Value", mapping.value);
    archive.Number(node, "MaxValue", mapping.maxValue);
    *this = Corrected();
}
