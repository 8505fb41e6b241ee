// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/parameters/ParameterRecordT.h"

#include <cmath>

/// A record that is on or off and says so: of the kinds Bool and Group.
template <class Base, ParameterKind kind>
class ParameterSwitchT : public ParameterRecordT<Base, kind> {
public:
    using ParameterRecordT<Base, kind>::ParameterRecordT;

    void SetPlainValue(double value) override {
        if (std::isnan(value)) return;
        ParameterRecordT<Base, kind>::SetPlainValue(value >= 0.5 ? 1 : 0);
    }
};

/// A switch: on from the middle of the range upwards.
template <class Base = ParameterBase>
class ParameterBoolT : public ParameterSwitchT<Base, ParameterKind::Bool> {
public:
    using ParameterSwitchT<Base, ParameterKind::Bool>::ParameterSwitchT;
};
