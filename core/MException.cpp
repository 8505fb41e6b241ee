// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"

// Defined here so that the class has one type information in the whole library.
MException::~MException() = default;
