// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/parameters/ParameterRecordT.h"

#include <cmath>

/// A record of a whole number: positions between two numbers give the one nearer to zero.
template <class Base = ParameterBase>
class ParameterIntT : public ParameterRecordT<Base, ParameterKind::Int> {
public:
    using ParameterRecordT<Base, ParameterKind::Int>::ParameterRecordT;

    void SetPlainValue(double value) override {
        ParameterRecordT<Base, ParameterKind::Int>::SetPlainValue(std::trunc(value));
    }
};
