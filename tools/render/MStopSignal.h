// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Turns an interrupt or a request to terminate into something the render can ask for, so that its
/// files are cleared away before the program ends. One instance at a time.
class MStopSignal {
public:
    MStopSignal();
    ~MStopSignal();
    MStopSignal(const MStopSignal&) = delete;
    MStopSignal& operator=(const MStopSignal&) = delete;

    /// The signal that has arrived; 0 for none. [any]
    static int Arrived() noexcept;
};

/// Makes a file that hits the shell's size limit a failed write rather than the program's end.
/// [main]
void MIgnoreFileSizeSignal();

/// Ends the program by `signal`, so that the shell sees why. [main]
[[noreturn]] void MEndBySignal(int signal);
