// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ProbeEffect.h"

#include "plugin/MAudioEffectPlugin.h"
#include "plugin/values/MValueTimeMS.h"

#include <atomic>
#include <bit>
#include <cmath>
#include <limits>
#include <memory>
#include <string>

namespace {

ProbeEffect::Script theScript;
ProbeEffect::Log theLog;

/// Counts one more, of which several threads may do; what it was before.
int Count(int& number) noexcept { return std::atomic_ref(number).fetch_add(1); }

class Probe final : public MAudioEffectPlugin {
public:
    Probe() {
        records_[ProbeEffect::Delay].DefineFloat(
            "delay", "Delay", 0, 1, 0, ParameterText{MValueTimeMS::Format, MValueTimeMS::Parse});
        records_[ProbeEffect::Level].DefineFloat("level", "Level", 0, 10, 1, "{0;.3}");
        records_[ProbeEffect::Hold].DefineBool("hold", "Hold", false);
        SetParameterTable(records_, ProbeEffect::kRecords);
    }

    std::int64_t Dispatch(MEffectCommand command, const MEffectArguments* arguments) override {
        const auto& values = arguments->values;
        switch (command) {
            case MEffectCommand::Destroy:
                Count(theLog.destroyed);
                return DispatchCommon(command, *arguments);
            case MEffectCommand::InitEffectProcessing:
                return InitEffectProcessing(values[0].integer, values[1].integer);
            case MEffectCommand::ProcessEffect:
                ProcessEffect(static_cast<const MTransport*>(values[0].pointer),
                              static_cast<const float* const*>(values[1].pointer),
                              static_cast<float* const*>(values[2].pointer),
                              static_cast<int>(values[3].integer));
                return 0;
            case MEffectCommand::IsTailSilent:
                return IsTailSilent() ? 1 : 0;
            default:
                return DispatchCommon(command, *arguments);
        }
    }

    std::int64_t SetHostCallback(void* context, MEffectHostCallback callback) override {
        theLog.context = context;
        theLog.callback = callback;
        return 0;
    }
    void ParameterChanged(std::int64_t index) override { theLog.changed.push_back(index); }
    void UpdateProcessing() override {}
    /// Fails where a value is no number, and not in the way that effects should.
    bool LoadParameters(MXMLNode state) override {
        for (const ParameterDefinition& record : records_) {
            static_cast<void>(std::stod(state.Attribute(record.key).value_or("0")));
        }
        return MAudioEffectPlugin::LoadParameters(state);
    }

    int InitEffectProcessing(std::int64_t channels, std::int64_t sampleRate) override {
        theLog.channels = static_cast<int>(channels);
        theLog.sampleRate = static_cast<int>(sampleRate);
        history_.assign(static_cast<std::size_t>(channels), {});
        return theScript.prepareResult;
    }

    void ProcessEffect(const MTransport* transport, const float* const* inputs,
                       float* const* outputs, int frames) override {
        theLog.transports.push_back(*transport);
        theLog.blocks.push_back(frames);
        if (theScript.inBlock != nullptr) theScript.inBlock();
        const auto level = static_cast<float>(records_[ProbeEffect::Level].Effective());
        const bool isHeld = records_[ProbeEffect::Hold].IsOn();
        for (std::size_t channel = 0; channel < history_.size(); ++channel) {
            auto& history = history_[channel];
            for (int i = 0; i < frames; ++i) {
                history.push_back(inputs[channel][i]);
                const bool reaches = history.size() > DelayFrames();
                const float delayed = reaches ? history[history.size() - 1 - DelayFrames()] : 0;
                outputs[channel][i] = isHeld ? 0.25f : level * delayed;
                const auto frame = static_cast<std::int64_t>(history.size()) - 1;
                if (theScript.notFiniteFrom >= 0 && frame >= theScript.notFiniteFrom) {
                    outputs[channel][i] = std::numeric_limits<float>::quiet_NaN();
                }
            }
        }
    }

    bool IsTailSilent() override {
        if (records_[ProbeEffect::Hold].IsOn()) return false;
        for (const auto& history : history_) {
            for (std::size_t i = 0; i < DelayFrames() && i < history.size(); ++i) {
                if (history[history.size() - 1 - i] != 0) return false;
            }
        }
        return true;
    }

private:
    std::size_t DelayFrames() const {
        const double seconds = records_[ProbeEffect::Delay].Effective();
        return static_cast<std::size_t>(std::llround(seconds * theLog.sampleRate));
    }

    ParameterDefinition records_[ProbeEffect::kRecords];
    std::vector<std::vector<float>> history_;  // [channels][frames since the preparation]
};

void* Entry(void* object, void* command, void* arguments) {
    const auto number = static_cast<MEffectCommand>(std::bit_cast<std::int64_t>(command));
    if (object == nullptr) {
        if (theScript.failsToCreate || Count(theLog.created) >= theScript.createsAtMost) {
            return nullptr;
        }
        object = std::make_unique<Probe>().release();
    }
    if (number == MEffectCommand::Create) return object;
    return std::bit_cast<void*>(static_cast<Probe*>(object)->Dispatch(
        number, static_cast<const MEffectArguments*>(arguments)));
}

}  // namespace

MEffectEntry ProbeEffect::Reset(const Script& script) {
    theScript = script;
    theLog = {};
    return &Entry;
}

const ProbeEffect::Log& ProbeEffect::Noted() { return theLog; }
