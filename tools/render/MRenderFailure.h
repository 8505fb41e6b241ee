// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MException.h"

#include <string>
#include <utility>

/// What the program answers its caller with. The numbers are stored in people's scripts.
enum class MExitCode : int { Ok = 0, Usage = 2, File = 3, Processing = 4 };

/// A failure that ends a render: one line for the user and the exit code that goes with it.
class MRenderFailure : public MException {
public:
    MRenderFailure(MExitCode code, std::string text) : MException(std::move(text)), code_(code) {}

    MExitCode Code() const noexcept { return code_; }

private:
    MExitCode code_;
};

/// Ends the render for what the user has asked for, or for what a file is. [main]
[[noreturn]] inline void FailUsage(std::string text) {
    throw MRenderFailure(MExitCode::Usage, std::move(text));
}
[[noreturn]] inline void FailFile(std::string text) {
    throw MRenderFailure(MExitCode::File, std::move(text));
}

/// The user asked to stop (interrupt, end of session).
class MRenderCancelled : public MException {
public:
    MRenderCancelled() : MException("stopped") {}
};
