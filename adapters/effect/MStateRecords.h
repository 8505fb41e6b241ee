// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/effect/MHostedEffect.h"
#include "plugin/parameters/ParameterDefinition.h"

#include <cmath>
#include <limits>
#include <span>
#include <vector>

/// The records whose values belong to a plug-in's state, in one order, so that a state's values are
/// a plain list of numbers: read, changed and put into force as a whole.
class MStateRecords {
public:
    using Values = std::vector<double>;
    /// Stands among values for a record that keeps what it has.
    static constexpr double kKept = std::numeric_limits<double>::quiet_NaN();

    /// Adds a record of the plug-in itself, or all of an effect (borrowed). [setup]
    void Add(ParameterDefinition& record);
    void Add(MHostedEffect& effect);

    /// The records' own values, as their knobs stand, or their defaults. [main]
    Values Current() const;
    Values Defaults() const;

    /// The place of a record's value in `values`. Throws MException for one that was not added.
    /// [main]
    double& Of(const ParameterDefinition& record, Values& values) const;
    /// The places of an effect's values, in the order of its records. Throws the same. [main]
    std::span<double> Of(const MHostedEffect& effect, Values& values) const;

    /// Puts those of `base` where `values` keep what records have. [main]
    static void Complete(Values& values, const Values& base);

    /// Writes all values into the records and lets the effects follow. Takes no lock. [any]
    void Apply(const Values& values) const noexcept;
    /// The same, until `isDone` says that another thread has done so; what has been written since
    /// then stays. [any]
    template <class Done>
    void Apply(const Values& values, Done&& isDone) const noexcept {
        for (std::size_t i = 0; i < records_.size(); ++i) {
            const double present = records_[i]->Value();
            if (isDone()) return;
            if (std::isnan(values[i])) continue;
            records_[i]->Overrule(values[i], present);
        }
        // All of them, whether or not their values differ: another thread may be writing the same
        // ones at this moment, without having come to its marks.
        for (MHostedEffect* const effect : effects_) effect->Mark(-1);
    }

private:
    std::size_t Find(const ParameterDefinition& record) const;

    std::vector<ParameterDefinition*> records_;
    std::vector<MHostedEffect*> effects_;
};
