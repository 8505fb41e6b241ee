// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MStateRecords.h"

#include "core/MException.h"

#include <algorithm>

void MStateRecords::Add(ParameterDefinition& record) { records_.push_back(&record); }

void MStateRecords::Add(MHostedEffect& effect) {
    for (ParameterDefinition& record : effect.Records()) Add(record);
    effects_.push_back(&effect);
}

MStateRecords::Values MStateRecords::Current() const {
    Values values;
    for (const ParameterDefinition* const record : records_) values.push_back(record->Knob());
    return values;
}

void MStateRecords::Complete(Values& values, const Values& base) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (std::isnan(values[i])) values[i] = base[i];
    }
}

void MStateRecords::Apply(const Values& values) const noexcept {
    for (std::size_t i = 0; i < records_.size(); ++i) {
        if (!std::isnan(values[i])) records_[i]->Overrule(values[i]);
    }
    for (MHostedEffect* const effect : effects_) effect->Mark(-1);
}

MStateRecords::Values MStateRecords::Defaults() const {
    Values values;
    for (const ParameterDefinition* const record : records_) values.push_back(record->defaultValue);
    return values;
}

std::size_t MStateRecords::Find(const ParameterDefinition& record) const {
    const auto found = std::find(records_.begin(), records_.end(), &record);
    if (found == records_.end()) throw MException("Index out of range.");
    return static_cast<std::size_t>(found - records_.begin());
}

double& MStateRecords::Of(const ParameterDefinition& record, Values& values) const {
    return values.at(Find(record));
}

std::span<double> MStateRecords::Of(const MHostedEffect& effect, Values& values) const {
    if (effect.Records().empty()) return {};
    return std::span(values).subspan(Find(effect.Records().front()), effect.Records().size());
}
