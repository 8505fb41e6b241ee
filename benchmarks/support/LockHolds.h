// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

/// Measures for how long threads hold the system's locks. The program that links it has the
/// system's lock functions replaced, which costs a branch while nothing is measured; outside Linux
/// and under the sanitizers, which replace them too, nothing is measured.
class LockHolds {
public:
    /// Durations in microseconds.
    using Durations = std::vector<double>;

    /// Gives `name` to the locks that this thread takes in `job` and that have no name yet.
    void Name(const std::string& name, const std::function<void()>& job);
    /// Runs `job` and notes the longest hold of every lock that any thread takes meanwhile and that
    /// has a name; "other" is what else this thread takes.
    void Measure(const std::function<void()>& job);

    /// What was noted, by name, one for each Measure.
    const std::map<std::string, Durations>& Holds() const noexcept { return holds_; }

private:
    std::map<const void*, std::string> names_;
    std::map<std::string, Durations> holds_;
};
