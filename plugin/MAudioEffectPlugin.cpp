// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MAudioEffectPlugin.h"

#include "core/MText.h"

#include <cmath>

namespace {

/// Tells the hook what was done to the state.
constexpr int kStateSaved = 1;

std::string WriteValue(const ParameterDefinition& record) {
    return MText::WriteNumber(record.Value());
}

/// Reads one record; false when its key is absent or no number of the record's range.
bool ReadRecord(ParameterDefinition& record, MXMLNode state) {
    const std::optional<std::string> text = state.Attribute(record.key);
    if (!text) return false;
    const std::optional<double> value = MText::ReadNumber(*text);
    if (!value) return false;
    record.SetValue(record.Nearest(*value));
    return true;
}

}  // namespace

std::int64_t MAudioEffectPlugin::SetHostCallback(void* context, MEffectHostCallback callback) {
    hostContext_ = context;
    hostCallback_ = callback;
    return 0;
}

void MAudioEffectPlugin::ResetSmoothing() {
    for (int index = 0; index < table_.count; ++index) {
        ParameterDefinition& record = table_.definitions[index];
        if (record.kind == ParameterKind::Float) record.previous = record.Effective();
    }
}

bool MAudioEffectPlugin::SaveParameters(MXMLNode state) {
    for (int index = 0; index < table_.count; ++index) {
        const ParameterDefinition& record = table_.definitions[index];
        state.SetAttribute(record.key, WriteValue(record));
    }
    StateNotification(kStateSaved, state);
    return false;
}

bool MAudioEffectPlugin::LoadParameters(MXMLNode state) {
    const MLock lock(parameterLock_);
    return ReadParameters(state);
}

bool MAudioEffectPlugin::ReadParameters(MXMLNode state) {
    bool isComplete = true;
    for (int index = 0; index < table_.count; ++index) {
        isComplete = ReadRecord(table_.definitions[index], state) && isComplete;
    }
    return isComplete;
}

int MAudioEffectPlugin::GroupEnd(int index) const noexcept {
    int end = index + 1;
    while (end < table_.count && table_.definitions[end].kind != ParameterKind::Group) ++end;
    return end;
}

void MAudioEffectPlugin::SaveParameterGroup(int index, MXMLNode state) {
    if (index < 0 || index >= table_.count) return;
    for (int i = index; i < GroupEnd(index); ++i) {
        state.SetAttribute(table_.definitions[i].key, WriteValue(table_.definitions[i]));
    }
}

void MAudioEffectPlugin::LoadParameterGroup(int index, MXMLNode state) {
    if (index < 0 || index >= table_.count) return;
    const MLock lock(parameterLock_);
    for (int i = index; i < GroupEnd(index); ++i) ReadRecord(table_.definitions[i], state);
}

void MAudioEffectPlugin::ParameterChanged(std::int64_t /*index*/) {}
void MAudioEffectPlugin::Reserved7(std::int64_t /*value*/) {}
void MAudioEffectPlugin::Reserved8(std::int64_t /*value*/) {}
void MAudioEffectPlugin::Reserved28(std::int64_t /*value*/) {}
void MAudioEffectPlugin::ReserveFor(std::span<const double> /*values*/) {}
void MAudioEffectPlugin::StateNotification(int /*what*/, MXMLNode /*state*/) {}
std::int32_t MAudioEffectPlugin::Query16(std::int64_t /*value*/) { return -1; }
std::int32_t MAudioEffectPlugin::SetFromDouble(double /*value*/) { return 0; }
std::int64_t MAudioEffectPlugin::Query20(std::int64_t /*first*/, std::int64_t /*second*/) {
    return -1;
}

void MAudioEffectPlugin::SetParameterTable(ParameterDefinition* definitions, int count) noexcept {
    table_.definitions = definitions;
    table_.count = count;
}

bool MAudioEffectPlugin::RequiresUpdate(std::int64_t index) const noexcept {
    if (index < 0 || index >= table_.count) return true;
    return (table_.definitions[index].Flags() & ParameterDefinition::kUpdateRequired) != 0;
}

std::int64_t MAudioEffectPlugin::Notify(MEffectNotification notification) {
    if (hostCallback_ == nullptr) return -1;
    const MEffectArguments arguments;
    return hostCallback_(hostContext_, static_cast<std::int64_t>(notification), &arguments);
}
