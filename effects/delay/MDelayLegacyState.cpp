// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MText.h"
#include "effects/delay/MDelayAudioEffectPlugin.h"

#include <string>

bool MDelayAudioEffectPlugin::LoadParameters(MXMLNode state) {
    // Both under one lock: no block may see the state half applied.
    const MLock lock(parameterLock_);
    const bool isComplete = ReadParameters(state);
    LoadLegacyKeys(state);
    return isComplete;
}

// Early versions kept the modes under names of their own. They count only besides the records' own
// keys, which those versions did not write.
void MDelayAudioEffectPlugin::LoadLegacyKeys(const MXMLNode& state) {
    if (state.Attribute("parameterclassicmode")) {
        LoadLegacyIndex(state, "parameterclassicmode", MDelayIndex::OfTap(0, MDelayIndex::Mode));
        // Those versions wrote the second tap's key only together with the first one's.
        LoadLegacyIndex(state, "parameterclassicmode1", MDelayIndex::OfTap(1, MDelayIndex::Mode));
    }
    LoadLegacyIndex(state, "parameterserialmode", MDelayIndex::kDelayMode);
}

void MDelayAudioEffectPlugin::LoadLegacyIndex(const MXMLNode& state, const char* key, int record) {
    const std::optional<std::string> text = state.Attribute(key);
    if (!text) return;
    const std::optional<double> index = MText::ReadNumber(*text);
    if (index) parameters_[record].SetValue(parameters_[record].Nearest(*index));
}
