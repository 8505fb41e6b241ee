// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <string_view>

/// Where guarded failures go: by default one line each on standard error. Process-wide.
///
/// Whoever reports leaves the text in a bounded queue (MFailureQueue, which says how long it may
/// be) and goes on. It is written out by the background worker, which runs wherever blocks do, by a
/// host binding after each call of the main thread, or else at the library's end. Reports that find
/// the queue full are counted, and the count is written.
class MFailureReporter {
public:
    /// Receives one report; must not throw.
    using Sink = std::function<void(const std::string& text)>;

    /// Queues `text`. Neither allocates nor waits; only with a sink does it call that before it
    /// returns, which does both. [any]
    static void Report(std::string_view text) noexcept { Report({}, text); }

    /// Reports "SYSTEM EXCEPTION! " and `operation`, such as "MAudioPlugin::SetParameter", in the
    /// same way. [any]
    static void ReportSystemException(const char* operation) noexcept {
        Report("SYSTEM EXCEPTION! ", operation);
    }

    /// Writes out what is queued, if anything; waits for others who do. [main]
    static void Flush() noexcept;

    /// Replaces the sink and returns the one so far; an empty sink stands for the default. [main]
    static Sink Exchange(Sink sink);

private:
    static void Report(std::string_view heading, std::string_view text) noexcept;
};
