// SPDX-License-Identifier: GPL-3.0-or-later
#include "product/MProductFactory.h"
#include "tools/parameters/MParameterSheet.h"

#include <iostream>

int main() {
    const auto plugin = MProductFactory::Create();
    if (plugin == nullptr) return 1;
    std::cout << MParameterSheet::Write(*plugin) << std::flush;
    return std::cout ? 0 : 1;
}
