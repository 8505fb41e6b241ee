// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MParameterTable.h"

#include "plugin/parameters/ParameterBoolT.h"
#include "plugin/parameters/ParameterEnumT.h"
#include "plugin/parameters/ParameterFloatT.h"
#include "plugin/parameters/ParameterGroupT.h"
#include "plugin/parameters/ParameterIntT.h"

#include <memory>

namespace {

std::unique_ptr<ParameterMainBase> MakeParameter(ParameterDefinition& record,
                                                 ParameterIdentity identity) {
    switch (record.kind) {
        case ParameterKind::Int:
            return std::make_unique<ParameterIntT<>>(record, std::move(identity));
        case ParameterKind::Enum:
            return std::make_unique<ParameterEnumT<>>(record, std::move(identity));
        case ParameterKind::Bool:
            return std::make_unique<ParameterBoolT<>>(record, std::move(identity));
        case ParameterKind::Group:
            return std::make_unique<ParameterGroupT<>>(record, std::move(identity));
        case ParameterKind::Float:
        case ParameterKind::Object:
            break;
    }
    return std::make_unique<ParameterFloatT<>>(record, std::move(identity));
}

std::string ShortName(const std::string& panel, MPanelShortNames shortNames) {
    for (const auto& [name, shortName] : shortNames) {
        if (panel == name) return shortName;
    }
    return panel;
}

}  // namespace

ParameterMainBase& MParameterTable::Add(ParameterDefinition& record, std::string id,
                                        std::string name, MParameterListener* listener, int index) {
    const auto identifier = static_cast<std::uint32_t>(directory_.Count());
    ParameterMainBase& parameter = directory_.Add(
        MakeParameter(record, {identifier, std::move(id), std::move(name), nullptr}));
    parameter.SetListener(listener, index);
    return parameter;
}

void MParameterTable::AddEffect(std::span<ParameterDefinition> records, const std::string& prefix,
                                const std::string& idPrefix, MPanelShortNames shortNames,
                                MParameterListener* listener) {
    std::string panel, shortPanel;
    int index = 0;
    for (ParameterDefinition& record : records) {
        if (record.kind == ParameterKind::Group) {
            panel = record.name + " - ";
            shortPanel = ShortName(record.name, shortNames) + " ";
            Add(record, idPrefix + shortPanel + "On", prefix + record.name, listener, index);
        } else {
            Add(record, idPrefix + shortPanel + record.name, prefix + panel + record.name, listener,
                index);
        }
        ++index;
    }
}
