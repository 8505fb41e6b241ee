// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/midi/MMIDITarget.h"

#include "plugin/MAudioPlugin.h"

MMIDITarget MMIDITarget::Of(MAudioPlugin& plugin, std::uint32_t identifier) {
    return {plugin.GetParameterID(identifier), static_cast<int>(identifier)};
}

std::optional<std::uint32_t> MMIDITarget::Find(MAudioPlugin& plugin) const {
    if (parameter.empty()) return std::nullopt;
    const auto hint = static_cast<std::uint32_t>(identifier);
    const bool isThere = identifier >= 0 && identifier < plugin.ParameterCount();
    if (isThere && plugin.GetParameterID(hint) == parameter) return hint;
    for (int i = 0; i < plugin.ParameterCount(); ++i) {
        const std::uint32_t found = plugin.Parameters().At(i).FirstIdentifier();
        if (plugin.GetParameterID(found) == parameter) return found;
    }
    return std::nullopt;
}

void MMIDITarget::Store(MXMLNode node, const MArchive& archive) {
    archive.Text(node, "Parameter", parameter);
    archive.Integer(node, "Identifier", identifier);
}
