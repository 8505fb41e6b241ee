// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MFailureReporter.h"

#include <string>
#include <vector>

/// Collects what is reported while it lives.
class Reports {
public:
    Reports()
        : previous_(MFailureReporter::Exchange(
              [this](const std::string& text) { texts.push_back(text); })) {}
    ~Reports() { MFailureReporter::Exchange(previous_); }
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

    std::vector<std::string> texts;

private:
    MFailureReporter::Sink previous_;
};
