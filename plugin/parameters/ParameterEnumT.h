// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/parameters/ParameterRecordT.h"

#include <algorithm>
#include <cmath>

/// A record of a choice out of a list: the choices share the range of positions evenly.
template <class Base = ParameterBase>
class ParameterEnumT : public ParameterRecordT<Base, ParameterKind::Enum> {
public:
    using ParameterRecordT<Base, ParameterKind::Enum>::ParameterRecordT;

    void SetPlainValue(double value) override {
        const double last = std::max(this->Record()->maximum, 0.0);
        const double index = std::clamp(std::floor(value + 0.5), 0.0, last);
        ParameterRecordT<Base, ParameterKind::Enum>::SetPlainValue(index);
    }
};
