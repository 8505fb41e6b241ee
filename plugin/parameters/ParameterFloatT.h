// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/parameters/ParameterRecordT.h"

/// A floating record: positions follow the record's curve.
template <class Base = ParameterBase>
class ParameterFloatT : public ParameterRecordT<Base, ParameterKind::Float> {
public:
    using ParameterRecordT<Base, ParameterKind::Float>::ParameterRecordT;
};
