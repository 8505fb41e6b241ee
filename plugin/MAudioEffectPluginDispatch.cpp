// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MAudioEffectPlugin.h"

#include <bit>

namespace {

/// The state that a save or load command points to; a null handle when it points nowhere.
MXMLNode StateOf(const MEffectArgument& argument) {
    const auto* const state = static_cast<const MXMLNode*>(argument.pointer);
    return state != nullptr ? *state : MXMLNode();
}

}  // namespace

std::int64_t MAudioEffectPlugin::DispatchCommon(MEffectCommand command,
                                                const MEffectArguments& arguments) {
    const MEffectArgument& first = arguments.values[0];
    const MEffectArgument& second = arguments.values[1];
    switch (command) {
        case MEffectCommand::SetHostCallback:
            return SetHostCallback(first.pointer,
                                   std::bit_cast<MEffectHostCallback>(second.pointer));
        case MEffectCommand::Destroy: {
            // Whoever is processing or loading finishes first.
            { const MLock lock(parameterLock_); }
            delete this;
            return 0;
        }
        case MEffectCommand::GetParameterTable:
            return std::bit_cast<std::int64_t>(&table_);
        case MEffectCommand::Reserved3:
            Reserved3();
            return 0;
        case MEffectCommand::ParameterChanged:
            ParameterChanged(first.integer);
            if (RequiresUpdate(first.integer)) UpdateProcessing();
            return 0;
        case MEffectCommand::Reserved5:
            Reserved7(first.integer);
            return 0;
        case MEffectCommand::Reserved6:
            Reserved8(first.integer);
            return 0;
        case MEffectCommand::SaveParameters:
            return SaveParameters(StateOf(first)) ? 1 : 0;
        case MEffectCommand::LoadParameters:
            return LoadParameters(StateOf(first)) ? 1 : 0;
        case MEffectCommand::Reserved13:
            Reserved15();
            return 0;
        case MEffectCommand::Query14:
            return Query16(first.integer);
        case MEffectCommand::SetFromDouble:
            return first.pointer != nullptr
                       ? SetFromDouble(*static_cast<const double*>(first.pointer))
                       : 0;
        case MEffectCommand::Query20:
            return Query20(first.integer, second.integer);
        case MEffectCommand::ReserveFor:
            if (first.pointer != nullptr && second.integer == table_.count) {
                ReserveFor({static_cast<const double*>(first.pointer),
                            static_cast<std::size_t>(table_.count)});
            }
            return 0;
        default:
            return 0;
    }
}
