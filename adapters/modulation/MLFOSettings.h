// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/modulation/MModulationTarget.h"
#include "dsp/modulation/MADSR.h"
#include "dsp/modulation/MLevelFollower.h"
#include "dsp/modulation/MModulationShape.h"
#include "dsp/modulation/MRandomWalk.h"
#include "plugin/MArchive.h"
#include "plugin/MTempoSync.h"

#include <vector>

// The numbers of these three are stored in states.

/// What a modulator takes its values from.
enum class MModulatorSource : int { Oscillator = 0, Follower = 1, Envelope = 2, RandomWalk = 3 };
/// What lets an oscillator or a random walk begin anew.
enum class MModulatorRestart : int { Never = 0, HostStart = 1, Note = 2 };
/// What a follower listens to; the input as well where there is no side chain.
enum class MFollowerInput : int { Input = 0, SideChain = 1 };

/// Everything about a modulator but its targets: plain numbers.
struct MModulatorSettings {
    bool isEnabled = false;
    MModulatorSource source = MModulatorSource::Oscillator;
    MModulatorRestart restart = MModulatorRestart::Never;

    MShapeSettings shape;  ///< of the oscillator; its seed is that of the random walk, too
    double rate = 1;       ///< hertz, of the oscillator
    bool isSynchronised = false;
    int syncLength = MTempoSync::kDefaultLength;
    MTempoSync::Type syncType = MTempoSync::Type::Straight;
    double phase = 0;        ///< cycles, 0..1
    bool isOneShot = false;  ///< stays where the first cycle ends

    MFollowerInput followerInput = MFollowerInput::Input;
    MFollowerSettings follower;
    MADSRSettings envelope;
    MRandomWalkSettings walk;

    double depth = 1;   ///< 0..1; of the swing around the middle, or of the way up from 0
    double offset = 0;  ///< -1..1
    bool isInverted = false;
    double smoothing = 0;  ///< seconds

    /// Reads or writes the attributes of `node`; bad ones become defaults. [main]
    void Store(MXMLNode node, const MArchive& archive);

private:
    void StoreOscillator(MXMLNode node, const MArchive& archive);
    void StoreSteps(MXMLNode node, const MArchive& archive);
    void StoreOthers(MXMLNode node, const MArchive& archive);
};

/// One modulator and what it moves.
struct MLFOSettings {
    MModulatorSettings modulator;
    std::vector<MModulationTarget> targets;  ///< up to MModulationTarget::kMaxTargets

    /// [main]
    void Store(MXMLNode node, const MArchive& archive);
    /// The same settings with every number within its range. [main]
    MLFOSettings Held() const;
};
