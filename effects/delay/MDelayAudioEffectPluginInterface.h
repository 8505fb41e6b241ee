// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#if defined(_WIN32)
#define M_EXPORT __declspec(dllexport)
#else
#define M_EXPORT __attribute__((visibility("default")))
#endif

/// The exported entry of the bare delay (see MEffectCommand).
///
/// `command` 7 returns `object`, or a new one for a null `object` (null when memory runs out); the
/// caller destroys it by command 1. Any other command returns its result; a null `object` stands
/// for a new one that is gone afterwards, but for command 2. `arguments` points to
/// MEffectArguments, null for a command without. Failures are reported and answered with 0, of
/// command 100 with 1, since its 0 says that the effect is ready. [any]
extern "C" M_EXPORT void* MDelayAudioEffectPluginInterface(void* object, void* command,
                                                           void* arguments) noexcept;
