// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MEditDistance.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

int MEditDistance(std::string_view left, std::string_view right) {
    std::vector<int> row(right.size() + 1);  // distances from the letters of `left` so far
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < left.size(); ++i) {
        int diagonal = row[0];
        row[0] = static_cast<int>(i) + 1;
        for (std::size_t j = 0; j < right.size(); ++j) {
            const int replaced = diagonal + (left[i] == right[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row[right.size()];
}
