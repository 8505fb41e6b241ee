// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/midi/MHeldNotes.h"
#include "adapters/modulation/MModulationCompiler.h"
#include "adapters/modulation/MModulationEngine.h"
#include "core/MMutex.h"
#include "dsp/MTripleBuffer.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The modulators and MultiParameters of a plug-in.
///
/// Settings are made and named on the main side, under a lock of their own; the audio thread gets
/// them as a plan, whole, at the start of a block, and never waits. Targets that no parameter has
/// stay in the settings, do nothing, and are reported once.
class MModulation {
public:
    static constexpr int kModulators = MModulationPlan::kModulators;
    static constexpr int kMultiParameters = MModulationPlan::kMultiParameters;

    /// Adds the MultiParameters. [setup]
    void AddParameters(MParameterTable& table) { multiParameters_.AddParameters(table); }
    /// Says what there is to be moved; both are borrowed and complete. [setup]
    void Bind(const MParameterDirectory& parameters, MModulationCompiler::Effects effects);

    /// A copy. [main]
    MModulationSettings Settings();
    /// Puts other settings into force. Throws MException when MultiParameters would move
    /// themselves, and everything stays as it was. [main]
    void SetSettings(const MModulationSettings& settings);
    void SetModulator(int index, const MLFOSettings& settings);
    void SetMultiParameter(int index, const MMultiParameterSettings& settings);
    /// Changes the settings under the lock, which `change` runs under; throws what that throws and
    /// what SetSettings throws, and everything stays as it was then. [main]
    void Change(const std::function<void(MModulationSettings&)>& change);

    /// A target that names the parameter with the key `id`, its knob's position noted. Throws
    /// MException when there is none. [main]
    MModulationTarget MakeTarget(const std::string& id) const;

    /// A plan that comes to the audio thread together with something else.
    struct Loaded {
        const MModulationPlan* plan = nullptr;  ///< borrowed; not to be used by anybody else
        std::uint64_t stamp = 0;                ///< larger than of all that was set before
    };

    /// Other settings, ready to be put into force at one moment together with something else. Keeps
    /// everybody else from changing them as long as it lives.
    class Replacement {
    public:
        /// `settings` may come from anywhere: MultiParameters that would move themselves lose their
        /// targets, which is reported. [main]
        Replacement(MModulation& modulation, const MModulationSettings& settings);
        ~Replacement();
        Replacement(const Replacement&) = delete;
        Replacement& operator=(const Replacement&) = delete;

        /// What is to come to the audio thread as long as this lives. [main]
        const Loaded& Plan() const noexcept { return loaded_; }

    private:
        MModulation& modulation_;
        Loaded loaded_;
        std::optional<MLock> lock_;
        std::vector<std::string> reports_;  // made once the lock is released
    };

    /// The parameters of the MultiParameters. [any]
    std::span<ParameterDefinition, kMultiParameters> MultiParameterRecords() noexcept {
        return multiParameters_.Records();
    }

    /// Lets everything begin anew at `sampleRate` hertz. [setup]
    void Prepare(int sampleRate) noexcept;
    /// Looks for what was set, before the look for what was loaded: so that what builds on a loaded
    /// state never comes before it. [audio]
    void LookForNewer() noexcept;
    /// Takes over the newest of what was set and of what was loaded last. [audio]
    void Adopt(const Loaded& loaded) noexcept;
    /// Whether modulators act on anything. [audio]
    bool IsActive() const noexcept { return plan_->IsActive(); }
    /// Lets MultiParameters that were written act; for blocks in which no modulator does. [audio]
    void FollowMultiParameters() noexcept { engine_.FollowMultiParameters(*plan_); }
    /// See MModulationEngine; only in blocks in which modulators act. [audio]
    void Advance(const MModulationPiece& piece) noexcept { engine_.Advance(*plan_, piece); }
    /// A key goes down or up; channels are 1..16, notes 0..127. [audio]
    void NoteOn(int channel, int note, double velocity) noexcept;
    void NoteOff(int channel, int note) noexcept;

    /// Whether MultiParameters have moved knobs since the last call: hosts and editors may want to
    /// look. [any]
    bool TakeKnobsMoved() noexcept { return engine_.TakeKnobsMoved(); }

private:
    struct StampedPlan {
        MModulationPlan plan;
        std::uint64_t stamp = 0;  // in the order of the changes
    };

    StampedPlan Prepare(const MModulationSettings& settings);
    Loaded Load(const MModulationSettings& settings);
    std::vector<std::string> TakeUnknown();

    MMultiParameters multiParameters_;
    std::optional<MModulationCompiler> compiler_;

    MMutex lock_;  // over the next four and the writing side of the plans
    MModulationSettings settings_;
    std::set<std::string> reported_;
    std::uint64_t stamp_ = 0;                           // of the newest plan
    std::vector<std::unique_ptr<StampedPlan>> loaded_;  // those that may be in use, oldest first

    MTripleBuffer<StampedPlan> plans_;  // those that were set
    std::atomic<std::uint64_t> stampInForce_{0};
    const MModulationPlan* plan_ = &plans_.Front().plan;  // of the audio thread: the one in force
    bool isReleased_ = false;                             // of the audio thread
    MModulationEngine engine_{multiParameters_};
    MHeldNotes keys_;  // of the audio thread
};
