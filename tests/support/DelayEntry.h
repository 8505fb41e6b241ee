// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effects/delay/MDelayAudioEffectPluginInterface.h"
#include "plugin/MEffectCommands.h"
#include "tests/support/EngineRun.h"

#include <bit>
#include <cstdint>
#include <vector>

/// A delay behind its exported entry, commanded by number; destroyed by command 1.
class DelayEntry {
public:
    DelayEntry() : object_(MDelayAudioEffectPluginInterface(nullptr, Number(7), nullptr)) {}
    DelayEntry(std::int64_t channels, std::int64_t sampleRate) : DelayEntry() {
        Prepare(channels, sampleRate);
    }
    ~DelayEntry() { Destroy(); }
    DelayEntry(const DelayEntry&) = delete;
    DelayEntry& operator=(const DelayEntry&) = delete;

    void Destroy() {
        if (object_ != nullptr) Send(1);
        object_ = nullptr;
    }
    std::int64_t Send(std::int64_t command, const MEffectArguments& arguments = {}) {
        MEffectArguments copy = arguments;
        return std::bit_cast<std::int64_t>(
            MDelayAudioEffectPluginInterface(object_, Number(command), &copy));
    }
    std::int64_t Send(std::int64_t command, MEffectArgument first, MEffectArgument second = {}) {
        MEffectArguments arguments;
        arguments.values[0] = first;
        arguments.values[1] = second;
        return Send(command, arguments);
    }
    std::int64_t Prepare(std::int64_t channels, std::int64_t sampleRate) {
        return Send(100, MEffectArgument(channels), MEffectArgument(sampleRate));
    }
    std::int64_t Update(std::int64_t index = -1) { return Send(4, MEffectArgument(index)); }
    std::int64_t Process(const void* transport, const void* inputs, const void* outputs,
                         std::int64_t count) {
        MEffectArguments arguments;
        arguments.values[0] = MEffectArgument(transport);
        arguments.values[1] = MEffectArgument(inputs);
        arguments.values[2] = MEffectArgument(outputs);
        arguments.values[3] = MEffectArgument(count);
        return Send(101, arguments);
    }
    /// One block of any length, in place.
    Sound Process(Sound sound) {
        std::vector<float*> pointers;
        std::int64_t length = 0;
        for (std::vector<float>& channel : sound) {
            pointers.push_back(channel.data());
            length = static_cast<std::int64_t>(channel.size());
        }
        Process(nullptr, pointers.data(), pointers.data(), length);
        return sound;
    }

    MEffectParameterTable& Table() { return *std::bit_cast<MEffectParameterTable*>(Send(2)); }
    ParameterDefinition& Record(int index) { return Table().definitions[index]; }
    void* Object() const { return object_; }

private:
    static void* Number(std::int64_t command) { return std::bit_cast<void*>(command); }

    void* object_;
};
