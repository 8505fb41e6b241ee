// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/parameters/ParameterBoolT.h"

/// A heading that other parameters are listed under, with the switch that turns them on.
template <class Base = ParameterBase>
class ParameterGroupT : public ParameterSwitchT<Base, ParameterKind::Group> {
public:
    using ParameterSwitchT<Base, ParameterKind::Group>::ParameterSwitchT;
};
