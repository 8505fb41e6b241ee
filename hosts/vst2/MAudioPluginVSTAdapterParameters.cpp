// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MGuard.h"
#include "hosts/vst2/MAudioPluginVSTAdapter.h"
#include "hosts/vst2/MVSTText.h"

namespace Vst2 {

namespace {

/// Hosts' indices and the plug-in's identifiers are the same numbers.
std::uint32_t Identifier(VstInt32 index) noexcept { return static_cast<std::uint32_t>(index); }

/// VstParameterFlags. Steps are never told as integers, from which some hosts conclude that
/// positions are integers as well.
VstInt32 FlagsOf(ParameterKind kind) noexcept {
    switch (kind) {
        case ParameterKind::Bool:
        case ParameterKind::Group:
            return kVstParameterIsSwitch;
        case ParameterKind::Int:
        case ParameterKind::Enum:
            return kVstParameterUsesFloatStep;
        case ParameterKind::Float:
        case ParameterKind::Object:
            break;
    }
    return 0;
}

}  // namespace

// The plug-in answers for any number, by the nearest parameter; a host that asks for an index that
// no parameter has means none.
bool MAudioPluginVSTAdapter::IsParameter(VstInt32 index) const noexcept {
    return index >= 0 && index < plugin_->ParameterCount();
}

void MAudioPluginVSTAdapter::setParameter(VstInt32 index, float value) {
    Guard("MAudioPluginVSTAdapter::setParameter", [&] {
        if (!isSetUp_ || !IsParameter(index)) return;
        plugin_->SetParameter(Identifier(index), static_cast<double>(value), false);
    });
}

float MAudioPluginVSTAdapter::getParameter(VstInt32 index) {
    return Guard("MAudioPluginVSTAdapter::getParameter", 0.0f, [&] {
        if (!IsParameter(index)) return 0.0f;
        return static_cast<float>(plugin_->GetParameter(Identifier(index)));
    });
}

void MAudioPluginVSTAdapter::getParameterName(VstInt32 index, char* text) {
    Guard("MAudioPluginVSTAdapter::getParameterName", [&] {
        if (!IsParameter(index)) return;
        CopyText(plugin_->GetParameterID(Identifier(index)), kLongestParameterText, text);
    });
}

void MAudioPluginVSTAdapter::getParameterDisplay(VstInt32 index, char* text) {
    Guard("MAudioPluginVSTAdapter::getParameterDisplay", [&] {
        if (!IsParameter(index)) return;
        CopyText(plugin_->GetParameterValueName(Identifier(index)), kLongestParameterText, text);
    });
}

void MAudioPluginVSTAdapter::getParameterLabel(VstInt32 index, char* text) {
    Guard("MAudioPluginVSTAdapter::getParameterLabel", [&] {
        if (!IsParameter(index)) return;
        CopyText(plugin_->GetParameterUnitsName(Identifier(index)), kLongestParameterText, text);
    });
}

bool MAudioPluginVSTAdapter::string2parameter(VstInt32 index, const char* text) {
    return Guard("MAudioPluginVSTAdapter::string2parameter", false, [&] {
        if (!IsParameter(index)) return false;
        if (text == nullptr) return true;
        const std::uint32_t identifier = Identifier(index);
        ParameterDefinition* record = plugin_->Parameters().Find(identifier).parameter->Record();
        if (record == nullptr || !record->ParseDisplayText(text)) return false;
        plugin_->SetParameter(identifier, plugin_->ParseParameterValueName(identifier, text),
                              false);
        return true;
    });
}

bool MAudioPluginVSTAdapter::getParameterProperties(VstInt32 index,
                                                    VstParameterProperties* properties) {
    return Guard("MAudioPluginVSTAdapter::getParameterProperties", false, [&] {
        if (!IsParameter(index)) return false;
        const std::uint32_t identifier = Identifier(index);
        ParameterMainBase& parameter = *plugin_->Parameters().Find(identifier).parameter;
        const ParameterDefinition* const record = parameter.Record();
        const VstInt32 flags = record != nullptr ? FlagsOf(record->kind) : 0;
        if (flags == 0 || !(record->maximum > record->minimum)) return false;
        // Nothing behind the short label: the records of some hosts end there.
        properties->flags = flags;
        properties->stepFloat = static_cast<float>(1 / (record->maximum - record->minimum));
        properties->smallStepFloat = properties->largeStepFloat = properties->stepFloat;
        CopyText(plugin_->GetParameterID(identifier), kLongestParameterText, properties->label);
        properties->shortLabel[0] = '\0';  // a key of seven characters would be no key
        return true;
    });
}

}  // namespace Vst2
