// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MXML.h"
#include "plugin/MEffectCommands.h"
#include "plugin/MTransport.h"

#include <cstdint>
#include <span>

/// Owns an effect object and drives it through its numbered command entry: one typed function for
/// each command that owners send. The entry may come from this program or from a loaded library.
///
/// The calls are ordered: `SetHostCallback` and `Table` first, `Prepare` before the first
/// `Process`. The effect does its own locking; the handle adds none.
class MEffectHandle {
public:
    /// Creates an effect through `entry`. Throws MException when the entry hands none back. [main]
    explicit MEffectHandle(MEffectEntry entry);
    /// Destroys the effect, which first waits for a running block. [main]
    ~MEffectHandle();
    MEffectHandle(const MEffectHandle&) = delete;
    MEffectHandle& operator=(const MEffectHandle&) = delete;

    /// Where the effect sends its notifications; `context` comes back with each. [setup]
    void SetHostCallback(void* context, MEffectHostCallback callback);
    /// The effect's records, valid as long as the effect. [any]
    std::span<ParameterDefinition> Table() const;

    /// Makes the effect ready for 1..8 `channels` at `sampleRate` hertz, from silence, and for
    /// blocks of up to `longestBlock` frames (0: not known), so that none of these takes memory.
    /// Answers 0 when it is. [setup]
    int Prepare(int channels, int sampleRate, int longestBlock = 0);
    /// Makes the memory that the effect needs once its records have `values`. [main]
    void ReserveFor(std::span<const double> values);
    /// Tells the effect that the record at `index` was written; -1 stands for all of them. [any]
    void ParameterChanged(int index);

    /// Runs one block of `frames` samples: `inputs` and `outputs` are [channels][frames]. The
    /// outputs carry the processed signal alone. A null transport means a stopped one at tempo 120.
    /// [audio]
    void Process(const MTransport* transport, const float* const* inputs, float* const* outputs,
                 int frames);
    /// Whether nothing is left in the effect that would sound on. [audio]
    bool IsTailSilent();

    /// How much later than its input the effect's output comes, in samples. [any]
    int Latency() const;
    /// How long the effect may sound on after its input has ended, in samples; negative for without
    /// end. [any]
    int TailLength() const;

    /// Writes every record into `node`. [main]
    void Save(MXMLNode& node);
    /// Reads the records that `node` has; true when it had every one. [main]
    bool Load(MXMLNode& node);

private:
    template <class... Payloads>
    std::int64_t Send(MEffectCommand command, Payloads... payloads) const;

    MEffectEntry entry_;
    void* effect_;
};
