// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ProbeEffect.h"

#include "core/MText.h"
#include "core/MXML.h"
#include "plugin/values/MValueTimeMS.h"

#include <array>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>

namespace {

ProbeEffect::Script theScript;
ProbeEffect::Log theLog;

class Probe {
public:
    Probe() {
        records_[ProbeEffect::Delay].DefineFloat(
            "delay", "Delay", 0, 1, 0, ParameterText{MValueTimeMS::Format, MValueTimeMS::Parse});
        records_[ProbeEffect::Level].DefineFloat("level", "Level", 0, 10, 1, "{0;.3}");
        records_[ProbeEffect::Hold].DefineBool("hold", "Hold", false);
        table_.definitions = records_.data();
        table_.count = ProbeEffect::kRecords;
    }

    MEffectParameterTable* Table() { return &table_; }

    void Save(MXMLNode node) const {
        node.SetAttribute("probe", "saved");
        for (const auto& record : records_) {
            node.SetAttribute(record.key, MText::WriteNumber(record.Value()));
        }
    }
    bool Load(const MXMLNode& node) {
        for (auto& record : records_) {
            if (const auto text = node.Attribute(record.key)) record.SetValue(std::stod(*text));
        }
        return node.Attribute("probe").has_value();
    }

    void Prepare(int channels, int sampleRate) {
        theLog.channels = channels;
        theLog.sampleRate = sampleRate;
        history_.assign(static_cast<std::size_t>(channels), {});
    }

    void Process(const float* const* inputs, float* const* outputs, int frames) {
        const auto delay = static_cast<std::size_t>(
            std::llround(records_[ProbeEffect::Delay].Effective() * theLog.sampleRate));
        const auto level = static_cast<float>(records_[ProbeEffect::Level].Effective());
        const bool isHeld = records_[ProbeEffect::Hold].IsOn();
        for (std::size_t channel = 0; channel < history_.size(); ++channel) {
            auto& history = history_[channel];
            for (int i = 0; i < frames; ++i) {
                history.push_back(inputs[channel][i]);
                const bool reaches = history.size() > delay;
                const float delayed = reaches ? history[history.size() - 1 - delay] : 0;
                outputs[channel][i] = isHeld ? 0.25f : level * delayed;
                const auto frame = static_cast<std::int64_t>(history.size()) - 1;
                if (theScript.notFiniteFrom >= 0 && frame >= theScript.notFiniteFrom) {
                    outputs[channel][i] = std::numeric_limits<float>::quiet_NaN();
                }
            }
        }
    }

    bool IsSilent() const {
        if (records_[ProbeEffect::Hold].IsOn()) return false;
        const auto delay = static_cast<std::size_t>(
            std::llround(records_[ProbeEffect::Delay].Effective() * theLog.sampleRate));
        for (const auto& history : history_) {
            for (std::size_t i = 0; i < delay && i < history.size(); ++i) {
                if (history[history.size() - 1 - i] != 0) return false;
            }
        }
        return true;
    }

private:
    std::array<ParameterDefinition, ProbeEffect::kRecords> records_;
    MEffectParameterTable table_;
    std::vector<std::vector<float>> history_;  // [channels][frames since Prepare]
};

/// Counts one more, of which several threads may do; what it was before.
int Count(int& number) noexcept { return std::atomic_ref(number).fetch_add(1); }

std::int64_t Dispatch(Probe& probe, MEffectCommand command, const MEffectArguments& arguments) {
    const auto& values = arguments.values;
    switch (command) {
        case MEffectCommand::SetHostCallback:
            theLog.context = values[0].pointer;
            theLog.callback = std::bit_cast<MEffectHostCallback>(values[1].pointer);
            return 0;
        case MEffectCommand::Destroy:
            Count(theLog.destroyed);
            std::default_delete<Probe>()(&probe);
            return 0;
        case MEffectCommand::GetParameterTable:
            return std::bit_cast<std::int64_t>(probe.Table());
        case MEffectCommand::ParameterChanged:
            theLog.changed.push_back(values[0].integer);
            return 0;
        case MEffectCommand::SaveParameters:
            probe.Save(*static_cast<MXMLNode*>(values[0].pointer));
            return 0;
        case MEffectCommand::LoadParameters:
            return probe.Load(*static_cast<const MXMLNode*>(values[0].pointer)) ? 1 : 0;
        case MEffectCommand::InitEffectProcessing:
            probe.Prepare(static_cast<int>(values[0].integer), static_cast<int>(values[1].integer));
            return theScript.prepareResult;
        case MEffectCommand::ProcessEffect:
            theLog.transports.push_back(*static_cast<const MTransport*>(values[0].pointer));
            theLog.blocks.push_back(static_cast<int>(values[3].integer));
            if (theScript.inBlock != nullptr) theScript.inBlock();
            probe.Process(static_cast<const float* const*>(values[1].pointer),
                          static_cast<float* const*>(values[2].pointer), theLog.blocks.back());
            return 0;
        case MEffectCommand::IsTailSilent:
            return probe.IsSilent() ? 1 : 0;
        default:
            return 0;
    }
}

void* Entry(void* object, void* command, void* arguments) {
    const auto number = static_cast<MEffectCommand>(std::bit_cast<std::int64_t>(command));
    if (object == nullptr) {
        if (theScript.failsToCreate || Count(theLog.created) >= theScript.createsAtMost) {
            return nullptr;
        }
        object = std::make_unique<Probe>().release();
    }
    if (number == MEffectCommand::Create) return object;
    return std::bit_cast<void*>(
        Dispatch(*static_cast<Probe*>(object), number, *static_cast<MEffectArguments*>(arguments)));
}

}  // namespace

MEffectEntry ProbeEffect::Reset(const Script& script) {
    theScript = script;
    theLog = {};
    return &Entry;
}

const ProbeEffect::Log& ProbeEffect::Noted() { return theLog; }
