// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/values/MValueNumber.h"

#include <cstdint>
#include <string>
#include <vector>

/// An index into a list of strings, shown as the string; typed as MReadChoice says.
class MValueList : public MValueNumber<std::int32_t> {
public:
    /// Describes `index`, which outlives the scale; `choices` has one entry or more. [setup]
    MValueList(std::int32_t& index, std::vector<std::string> choices,
               std::int32_t defaultIndex = 0);

    std::string TypeName() const override { return "MValueList"; }

protected:
    std::string Show(std::int32_t value) const override;
    std::optional<std::int32_t> Read(const std::string& text) const override;

private:
    const std::vector<std::string> choices_;
};

/// An enumerator of a named enumeration, whatever numbers its enumerators have; shown as its name,
/// with positions and steps from one enumerator to the next. A value that is no enumerator is shown
/// as a number and stands at the first one's position.
class MValueEnum : public MValueNumber<std::int32_t> {
public:
    struct Enumerator {
        std::int32_t value;
        std::string name;
    };

    /// Describes `value`, which outlives the scale; `enumerators` has one entry or more, by
    /// ascending value. [setup]
    MValueEnum(std::int32_t& value, const std::vector<Enumerator>& enumerators,
               std::int32_t defaultValue);

    std::string TypeName() const override { return "MValueEnum"; }

protected:
    std::string Show(std::int32_t value) const override;
    std::optional<std::int32_t> Read(const std::string& text) const override;
    double PositionOf(std::int32_t value) const override;
    std::int32_t ValueAt(double x) const override;
    std::int32_t Moved(double steps) const override;

private:
    std::optional<std::size_t> PlaceOf(std::int32_t value) const;

    std::vector<std::int32_t> values_;
    std::vector<std::string> names_;  // as many as values
};
