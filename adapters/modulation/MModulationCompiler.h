// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/modulation/MModulationPlan.h"
#include "adapters/modulation/MModulationSettings.h"
#include "plugin/parameters/MParameterDirectory.h"

#include <memory>
#include <set>
#include <span>
#include <string>
#include <unordered_map>

/// Turns settings into a plan: finds the parameters that targets name, leaves out what is off, and
/// puts the MultiParameters into an order.
class MModulationCompiler {
public:
    using Effects = std::span<const std::unique_ptr<MHostedEffect>>;
    using Records = std::span<ParameterDefinition, MModulationPlan::kMultiParameters>;

    /// All are complete; the effects and `multiParameters` are borrowed, the latter being the
    /// records of the MultiParameters. [main]
    MModulationCompiler(const MParameterDirectory& parameters, Effects effects,
                        Records multiParameters);

    /// The plan for `settings`, whose numbers are within their ranges. Throws MException when
    /// MultiParameters would move themselves. [main]
    MModulationPlan Compile(const MModulationSettings& settings);

    /// Keys of targets that no parameter has, of the last Compile. [main]
    const std::set<std::string>& UnknownTargets() const noexcept { return unknown_; }

    /// The parameter that the target names; null for none. [main]
    ParameterMainBase* Find(const MModulationTarget& target) const;

private:
    /// What acts on one parameter.
    struct Linked {
        ParameterMainBase* parameter;
        bool usesKnob;
        std::vector<MModulationPlan::Link> links;
    };

    ParameterMainBase* Resolve(const MModulationTarget& target);
    int MultiParameterOf(ParameterMainBase& parameter) const;
    void AddWrites(const MModulationSettings& settings, MModulationPlan& plan);
    void Sort(MModulationPlan& plan) const;
    void AddLinks(const MModulationSettings& settings, MModulationPlan& plan);
    void AddSlot(const Linked& linked, MModulationPlan& plan) const;

    const Effects effects_;
    const Records multiParameters_;
    std::unordered_map<std::string, ParameterMainBase*> byId_;
    std::set<std::string> unknown_;
    std::vector<Linked> links_;  // of one Compile
};
