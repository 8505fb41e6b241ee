// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/parameters/ParameterBase.h"

#include <cassert>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

/// A parameter with one record, which lives elsewhere and outlives it: what all kinds of record
/// have in common. `Base` is ParameterBase or ParameterBaseCustom.
template <class Base, ParameterKind kind>
class ParameterRecordT : public Base {
public:
    /// `record` is laid down already, as the kind that this class is for. [setup]
    ParameterRecordT(ParameterDefinition& record, ParameterIdentity identity)
        : Base(std::move(identity)), record_(record) {
        assert(record.kind == kind);
    }

    ParameterKind Kind() const noexcept override { return kind; }

    void SetNormalised(std::uint32_t offset, double x, bool silent) override {
        if (std::isnan(x)) return;
        const double newValue = record_.FromNormalised(x);
        if (!std::isfinite(newValue)) return;
        const double oldValue = record_.Effective();
        record_.SetKnob(newValue);
        if (silent) return;
        const bool refresh = HasFlag(ParameterDefinition::kUpdateRequired);
        this->TellChange(offset, oldValue, newValue, refresh);
    }

    double GetNormalised(std::uint32_t /*offset*/) const override {
        return record_.ToNormalised(record_.Value());
    }

    std::string GetValueName(std::uint32_t /*offset*/) const override {
        return record_.DisplayText(record_.Value());
    }

    std::string GetValueNameFrom01(std::uint32_t /*offset*/, double x) const override {
        return record_.DisplayText(record_.FromNormalised(x));
    }

    double ParseValueName(std::uint32_t offset, const std::string& text) override {
        const std::optional<double> plain = record_.ParseDisplayText(text);
        return plain ? record_.ToNormalised(*plain) : GetNormalised(offset);
    }

    std::string GetUnitsName() const override { return record_.unitsName; }

    bool HasOption13() const noexcept override { return HasFlag(ParameterDefinition::kOption13); }

    void SetRedirect(std::uint32_t /*offset*/, bool on) override { record_.SetRedirect(on); }

    double GetDefaultNormalised() const override {
        const double range = record_.maximum - record_.minimum;
        return range > 0 ? (record_.defaultValue - record_.minimum) / range : 0;
    }

    ParameterDefinition* Record() noexcept override { return &record_; }

    bool HasOption19() const noexcept override { return HasFlag(ParameterDefinition::kOption19); }

    void SetPlainValue(double value) override {
        if (std::isfinite(value)) record_.SetValue(value);
    }

private:
    bool HasFlag(std::uint8_t flag) const noexcept { return (record_.Flags() & flag) != 0; }

    ParameterDefinition& record_;
};
