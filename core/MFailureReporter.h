// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

/// Where guarded failures go: by default one line each on standard error. Process-wide.
class MFailureReporter {
public:
    /// Receives one report; must not throw.
    using Sink = std::function<void(const std::string& text)>;

    /// Hands `text` to the sink. Waits for other reports, allocates. [any]
    static void Report(const std::string& text) noexcept;

    /// Reports "SYSTEM EXCEPTION! " and `operation`, such as "MAudioPlugin::SetParameter". [any]
    static void ReportSystemException(const char* operation) noexcept;

    /// Replaces the sink and returns the one so far; an empty sink stands for the default. [main]
    static Sink Exchange(Sink sink);
};
