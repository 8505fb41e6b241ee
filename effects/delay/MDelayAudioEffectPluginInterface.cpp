// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayAudioEffectPluginInterface.h"

#include "core/MGuard.h"
#include "effects/delay/MDelayAudioEffectPlugin.h"

#include <bit>
#include <cstdint>
#include <memory>

namespace {

/// The answer of a command that has failed. A failed preparation must not pass for a done one.
std::int64_t FailureOf(MEffectCommand command) noexcept {
    return command == MEffectCommand::InitEffectProcessing ? 1 : 0;
}

std::int64_t RunWithoutObject(MEffectCommand command, const MEffectArguments* arguments) {
    auto effect = std::make_unique<MDelayAudioEffectPlugin>();
    const std::int64_t result =
        command == MEffectCommand::Destroy ? 0 : effect->Dispatch(command, arguments);
    // Nobody could destroy this object later; only the answer of one command points into it.
    if (command == MEffectCommand::GetParameterTable) static_cast<void>(effect.release());
    return result;
}

}  // namespace

void* MDelayAudioEffectPluginInterface(void* object, void* command, void* arguments) noexcept {
    auto* const effect = static_cast<MAudioEffectPlugin*>(object);
    const auto number = static_cast<MEffectCommand>(std::bit_cast<std::int64_t>(command));
    const auto* const given = static_cast<const MEffectArguments*>(arguments);
    if (number == MEffectCommand::Create) {
        if (effect != nullptr) return effect;
        return Guard("MDelayAudioEffectPluginInterface", static_cast<MAudioEffectPlugin*>(nullptr),
                     []() -> MAudioEffectPlugin* {
                         return std::make_unique<MDelayAudioEffectPlugin>().release();
                     });
    }
    const std::int64_t result = Guard("MDelayAudioEffectPluginInterface", FailureOf(number), [&] {
        return effect != nullptr ? effect->Dispatch(number, given)
                                 : RunWithoutObject(number, given);
    });
    return std::bit_cast<void*>(result);
}
