// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/parameters/MParameterSheet.h"

#include "core/MText.h"
#include "plugin/MAudioPlugin.h"

namespace {

constexpr const char* kIntroduction =
    "# Parameters\n"
    "\n"
    "What a host automates. The identifier is the parameter's index in VST 2.4 and its id in VST "
    "3; "
    "it never\n"
    "changes, and new parameters come at the end. The key is what hosts list. \"Stored\" are "
    "lowest, highest\n"
    "and default value in the parameter's own units: log10 of hertz for frequencies, seconds for "
    "times, the\n"
    "square root of the amplitude for Feedback and Gain, decibels for the gains of input, output "
    "and "
    "bands.\n"
    "\n"
    "Written by `build/release/kestrune-parameters > docs/parameters.md`.\n"
    "\n"
    "| Id | Key | Name | Range | Default | Stored |\n"
    "|---:|---|---|---|---|---|\n";

std::string Range(const ParameterDefinition& record) {
    if (record.kind != ParameterKind::Enum) {
        return record.DisplayText(record.minimum) + " to " + record.DisplayText(record.maximum);
    }
    std::string choices;
    for (const std::string& choice : record.choices) {
        choices += (choices.empty() ? "" : ", ") + choice;
    }
    return choices;
}

std::string Stored(const ParameterDefinition& record) {
    return MText::WriteNumber(record.minimum) + " to " + MText::WriteNumber(record.maximum) + ", " +
           MText::WriteNumber(record.defaultValue);
}

}  // namespace

std::string MParameterSheet::Write(MAudioPlugin& plugin) {
    std::string sheet = kIntroduction;
    for (int index = 0; index < plugin.ParameterCount(); ++index) {
        ParameterMainBase& parameter = plugin.Parameters().At(index);
        const std::string id = std::to_string(parameter.FirstIdentifier());
        sheet += "| " + id + " | " + parameter.GetID() + " | " + parameter.GetName() + " | ";
        if (const ParameterDefinition* record = parameter.Record()) {
            sheet += Range(*record) + " | " + record->DisplayText(record->defaultValue) + " | " +
                     Stored(*record);
        }
        sheet += " |\n";
    }
    return sheet;
}
