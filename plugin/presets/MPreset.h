// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

/// One preset: what it sets and what the user knows it by. Plain data, UTF-8.
struct MPreset {
    std::string name;  ///< without "/"
    std::string author;
    std::string comment;  ///< a sentence or more
    std::vector<std::string> tags;
    bool isFavourite = false;
    std::string content;  ///< XML text of one element; whose it is, the category says
};
