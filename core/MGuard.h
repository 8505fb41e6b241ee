// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MException.h"
#include "core/MFailureReporter.h"

#include <utility>

/// What a guard does with an MException; any other failure is always reported with the operation.
enum class MExceptionPolicy {
    Report,   ///< reported with its own text
    Swallow,  ///< expected here (a typed text that does not parse): the neutral answer says enough
};

/// Runs `job` and returns its result; a failure is reported and answered with `neutral`. Nothing
/// thrown leaves it. `operation` is the full name, such as "MAudioPlugin::GetParameter". To throw
/// takes memory, on the audio thread as well; what is done about it here takes none and waits for
/// nobody. [any]
template <MExceptionPolicy policy = MExceptionPolicy::Report, class Result, class Job>
Result Guard(const char* operation, Result neutral, Job&& job) noexcept {
    try {
        return std::forward<Job>(job)();
    } catch (const MException& exception) {
        if constexpr (policy == MExceptionPolicy::Report) {
            MFailureReporter::Report(exception.Text());
        }
    } catch (...) {
        MFailureReporter::ReportSystemException(operation);
    }
    return neutral;
}

/// The same for a job without a result. [any]
template <MExceptionPolicy policy = MExceptionPolicy::Report, class Job>
void Guard(const char* operation, Job&& job) noexcept {
    Guard<policy>(operation, false, [&] {
        std::forward<Job>(job)();
        return true;
    });
}
