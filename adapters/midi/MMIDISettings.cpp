// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/midi/MMIDISettings.h"

#include <algorithm>
#include <string_view>

namespace {

template <class Assignments>
void StoreList(MXMLNode node, const MArchive& archive, std::string_view listName,
               std::string_view elementName, Assignments& assignments) {
    using Assignment = typename Assignments::value_type;
    MXMLNode list = archive.Child(node, listName);
    if (archive.IsWriting()) {
        // The last ones that nobody has touched go without saying; a place in the list does not.
        const auto last = std::find_if(assignments.rbegin(), assignments.rend(),
                                       [](const auto& each) { return each != Assignment{}; });
        for (auto each = assignments.begin(); each != last.base(); ++each) {
            each->Store(list.AddChild(elementName), archive);
        }
        return;
    }
    if (!list) return;
    assignments.fill({});
    auto place = assignments.begin();
    for (const MXMLNode& element : list.Children()) {
        if (element.Name() != elementName) continue;
        if (place == assignments.end()) break;
        (place++)->Store(element, archive);
    }
}

}  // namespace

void MMIDISettings::Correct() {
    MPresetController& preset = presetController;
    if (preset.controller < 0 || preset.controller > 127) preset.controller = 0;
    for (int* const channel : {&preset.channel, &presetPrograms.channel}) {
        if (*channel < 0 || *channel > 16) *channel = 0;
    }
    for (MControllerAssignment& each : controllers) each = each.Corrected();
    for (MNoteAssignment& each : notes) each = each.Corrected();
}

void MMIDISettings::Store(MXMLNode node, const MArchive& archive) {
    archive.Switch(node, "ControllersEnabled", areControllersEnabled);
    archive.Switch(node, "NoteControllersEnabled", areNoteControllersEnabled);
    const MXMLNode preset = archive.Child(node, "PreviousNextPresetController");
    archive.Switch(preset, "Enabled", presetController.isEnabled);
    archive.Integer(preset, "Controller", presetController.controller);
    archive.Integer(preset, "Channel", presetController.channel);
    const MXMLNode programs = archive.Child(node, "PresetPrograms");
    archive.Switch(programs, "Enabled", presetPrograms.isEnabled);
    archive.Integer(programs, "Channel", presetPrograms.channel);
    StoreList(node, archive, "Controllers", "Controller", controllers);
    StoreList(node, archive, "NoteControllers", "NoteController", notes);
    Correct();
}
