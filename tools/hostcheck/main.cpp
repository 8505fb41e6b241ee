// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "tools/hostcheck/MHostCheck.h"

#include <exception>
#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    try {
        const std::vector<std::string> arguments(argv + 1, argv + argc);
        if (arguments.empty() || arguments.front() == "--help") {
            std::cout << MHostCheck::Usage();
            return arguments.empty() ? 2 : 0;
        }
        const MHostCheckOptions options = MHostCheckOptions::Parse(arguments);
        const MHostCheck check(options);
        if (options.input.empty()) {
            std::cout << check.Report();
            const std::vector<std::string> faults = check.Faults();
            for (const std::string& fault : faults) std::cout << "fault: " << fault << "\n";
            return faults.empty() ? 0 : 1;
        }
        check.Render();
        return 0;
    } catch (const MException& failure) {
        std::cerr << "kestrune-hostcheck: " << failure.Text() << "\n";
    } catch (const std::exception& failure) {
        std::cerr << "kestrune-hostcheck: " << failure.what() << "\n";
    }
    return 1;
}
