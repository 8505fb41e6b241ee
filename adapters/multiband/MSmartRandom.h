// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/multiband/MBandLayoutRecord.h"
#include "plugin/parameters/MParameterDirectory.h"
#include "plugin/presets/MRandomRule.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <vector>

class MAudioEffectPluginToAudioPluginMultiBandAdapter;

/// Random settings of the whole plug-in that stay musical: the effect's by rules of its own, those
/// of the bands by the rules here. Input and output gain and whatever no rule names stay as they
/// are. The same seed gives the same settings.
namespace MSmartRandom {

/// Groups that are to stay as they are.
class Locks {
public:
    Locks() = default;
    Locks(std::initializer_list<MRandomGroup> groups) {
        for (const MRandomGroup group : groups) Set(group, true);
    }
    void Set(MRandomGroup group, bool on) noexcept {
        bits_ = on ? bits_ | Bit(group) : bits_ & ~Bit(group);
    }
    bool Has(MRandomGroup group) const noexcept { return (bits_ & Bit(group)) != 0; }

private:
    static unsigned Bit(MRandomGroup group) noexcept { return 1U << static_cast<unsigned>(group); }

    unsigned bits_ = 0;
};

/// One parameter and its value, in the record's own units.
struct Write {
    std::uint32_t identifier;
    double value;
};

struct Settings {
    std::optional<MBandLayoutRecord> bands;  ///< one to four; none when they are locked
    std::vector<Write> writes;
};

/// Draws settings for the parameters of a plug-in, of which nothing is changed. [any]
Settings Generate(const MParameterDirectory& parameters, std::span<const MRandomRule> rules,
                  const Locks& locks, std::uint32_t seed);

/// Puts settings into force: first the bands, then the parameters, as if the user had moved them.
/// [main]
void Apply(const Settings& settings, MAudioEffectPluginToAudioPluginMultiBandAdapter& plugin);

}  // namespace MSmartRandom
