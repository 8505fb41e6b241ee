// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

/// How many letters must be inserted, dropped or replaced to turn one text into the other. [any]
int MEditDistance(std::string_view left, std::string_view right);
