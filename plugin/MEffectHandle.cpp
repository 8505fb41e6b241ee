// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MEffectHandle.h"

#include "core/MException.h"

#include <bit>

namespace {

// Commands and results cross the entry as pointer-sized numbers.
void* Number(MEffectCommand command) {
    return std::bit_cast<void*>(static_cast<std::int64_t>(command));
}

MEffectArgument Cell(std::int64_t value) { return MEffectArgument(value); }
MEffectArgument Cell(const void* value) { return MEffectArgument(value); }

}  // namespace

MEffectHandle::MEffectHandle(MEffectEntry entry)
    : entry_(entry), effect_(entry(nullptr, Number(MEffectCommand::Create), nullptr)) {
    if (effect_ == nullptr) throw MException("The effect could not be created.");
}

MEffectHandle::~MEffectHandle() { Send(MEffectCommand::Destroy); }

template <class... Payloads>
std::int64_t MEffectHandle::Send(MEffectCommand command, Payloads... payloads) const {
    MEffectArguments arguments = {{Cell(payloads)...}};
    return std::bit_cast<std::int64_t>(entry_(effect_, Number(command), &arguments));
}

void MEffectHandle::SetHostCallback(void* context, MEffectHostCallback callback) {
    Send(MEffectCommand::SetHostCallback, context, std::bit_cast<void*>(callback));
}

std::span<ParameterDefinition> MEffectHandle::Table() const {
    const auto* table =
        std::bit_cast<const MEffectParameterTable*>(Send(MEffectCommand::GetParameterTable));
    if (table == nullptr || table->definitions == nullptr || table->count < 0) return {};
    return {table->definitions, static_cast<std::size_t>(table->count)};
}

int MEffectHandle::Prepare(int channels, int sampleRate, int longestBlock) {
    return static_cast<int>(Send(MEffectCommand::InitEffectProcessing, std::int64_t{channels},
                                 std::int64_t{sampleRate}, std::int64_t{longestBlock}));
}

void MEffectHandle::ReserveFor(std::span<const double> values) {
    Send(MEffectCommand::ReserveFor, static_cast<const void*>(values.data()),
         static_cast<std::int64_t>(values.size()));
}

void MEffectHandle::ParameterChanged(int index) {
    Send(MEffectCommand::ParameterChanged, std::int64_t{index});
}

void MEffectHandle::Process(const MTransport* transport, const float* const* inputs,
                            float* const* outputs, int frames) {
    Send(MEffectCommand::ProcessEffect, static_cast<const void*>(transport),
         static_cast<const void*>(inputs), static_cast<const void*>(outputs), std::int64_t{frames});
}

bool MEffectHandle::IsTailSilent() { return Send(MEffectCommand::IsTailSilent) != 0; }

int MEffectHandle::Latency() const { return static_cast<int>(Send(MEffectCommand::Latency)); }

int MEffectHandle::TailLength() const { return static_cast<int>(Send(MEffectCommand::TailLength)); }

void MEffectHandle::Save(MXMLNode& node) {
    Send(MEffectCommand::SaveParameters, static_cast<const void*>(&node));
}

bool MEffectHandle::Load(MXMLNode& node) {
    return Send(MEffectCommand::LoadParameters, static_cast<const void*>(&node)) != 0;
}
