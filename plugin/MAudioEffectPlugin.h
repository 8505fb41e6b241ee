// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MMutex.h"
#include "core/MXML.h"
#include "plugin/MEffectCommands.h"
#include "plugin/MTransport.h"

#include <cstdint>
#include <span>

/// The DSP core of a plug-in without any host knowledge: it owns its records, prepares for a
/// channel count and a sample rate, processes blocks, saves and loads its parameters.
///
/// Its owner drives it through one numbered command entry (MEffectCommand). The order of the
/// virtual operations is part of the interface; the ReservedN and QueryN ones are hooks that keep
/// their places. Process, update, load and destroy take the parameter lock for their whole
/// duration.
class MAudioEffectPlugin {
public:
    virtual ~MAudioEffectPlugin() = default;  // slot 0

    /// Carries out one command; an unknown one does nothing and answers 0. `arguments` may be null
    /// for commands that read none. Throws what the operation throws. [any]
    virtual std::int64_t Dispatch(MEffectCommand command, const MEffectArguments* arguments) = 0;

    /// Whom Notify tells; a null callback tells nobody. [setup]
    virtual std::int64_t SetHostCallback(void* context, MEffectHostCallback callback);
    virtual void Reserved3() {}
    /// Takes the present values as where the last ramps ended, so that no ramp follows. [setup]
    virtual void ResetSmoothing();
    /// Hears that record `index` was written; called before an update that the write asks for.
    /// [any]
    virtual void ParameterChanged(std::int64_t index);
    /// Recomputes what depends on the records, under the parameter lock. Throws MException "Could
    /// not acquire mutex.". [audio]: allocates when a line grows beyond all it has held.
    virtual void UpdateProcessing() = 0;
    virtual void Reserved7(std::int64_t value);
    virtual void Reserved8(std::int64_t value);
    /// Writes every record into `state` as an attribute of its key. Returns false. [main]
    virtual bool SaveParameters(MXMLNode state);
    /// Reads every record by its key, under the parameter lock; an absent or unreadable one keeps
    /// its value. Returns whether every record was there and readable. [main]
    virtual bool LoadParameters(MXMLNode state);
    virtual void StateNotification(int what, MXMLNode state);
    /// Writes the record at `index` and those after it up to the next panel. [main]
    virtual void SaveParameterGroup(int index, MXMLNode state);
    /// Reads the same run of records. [main]
    virtual void LoadParameterGroup(int index, MXMLNode state);
    virtual void Reserved14() {}
    virtual void Reserved15() {}
    virtual std::int32_t Query16(std::int64_t value);
    virtual std::int32_t SetFromDouble(double value);
    virtual void EditorIdle() {}
    virtual void EditorRefresh() {}
    virtual std::int64_t Query20(std::int64_t first, std::int64_t second);
    /// Makes ready for `channels` (1 to 8) at `sampleRate` hertz, starting from silence. Throws
    /// MException for anything else and stays as it was. Returns 0. [setup]
    virtual int InitEffectProcessing(std::int64_t channels, std::int64_t sampleRate) = 0;
    virtual void Reserved22() {}
    /// Processes `count` frames of the prepared channels; the outputs get the wet signal alone. A
    /// null transport stands for 120 beats per minute, stopped. Takes the parameter lock. [audio]
    virtual void ProcessEffect(const MTransport* transport, const float* const* inputs,
                               float* const* outputs, int count) = 0;
    virtual void Reserved24() {}
    /// Whether nothing more would come out after silence went in. [audio]
    virtual bool IsTailSilent() { return true; }
    virtual std::int32_t Query26() { return 0; }
    virtual std::int32_t Query27() { return -1; }
    virtual void Reserved28(std::int64_t value);
    /// Makes the memory that processing needs once the records have `values`, one for each in their
    /// order, so that the update that follows them need not. [main]
    virtual void ReserveFor(std::span<const double> values);

protected:
    MAudioEffectPlugin() = default;
    MAudioEffectPlugin(const MAudioEffectPlugin&) = delete;
    MAudioEffectPlugin& operator=(const MAudioEffectPlugin&) = delete;

    /// Publishes the records; they must outlive the effect's use. [setup]
    void SetParameterTable(ParameterDefinition* definitions, int count) noexcept;
    /// Does what LoadParameters says for an effect that holds the lock for more than that. [main]
    bool ReadParameters(MXMLNode state);
    /// The commands that every effect shares; numbers without one answer 0. [any]
    std::int64_t DispatchCommon(MEffectCommand command, const MEffectArguments& arguments);
    /// Tells the owner; returns its answer, -1 without an owner. Never called under the parameter
    /// lock: the owner may answer with commands of its own. [audio]
    std::int64_t Notify(MEffectNotification notification);

    MMutex parameterLock_;

private:
    bool RequiresUpdate(std::int64_t index) const noexcept;
    int GroupEnd(int index) const noexcept;

    MEffectParameterTable table_;
    void* hostContext_ = nullptr;
    MEffectHostCallback hostCallback_ = nullptr;
};
