// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <optional>

/// One line on standard error that follows a render; silent unless that is a terminal. The line is
/// gone when this is.
class MProgressBar {
public:
    /// A quiet bar shows nothing anywhere. [main]
    explicit MProgressBar(bool isQuiet);
    ~MProgressBar();
    MProgressBar(const MProgressBar&) = delete;
    MProgressBar& operator=(const MProgressBar&) = delete;

    /// Shows `seconds` of audio done and, as a bar, the share of the input (0..1); without a share
    /// the tail is running. Draws ten times a second at most. [main]
    void Show(double seconds, std::optional<double> share);

private:
    bool isShown_;
    bool isDrawn_ = false;
    std::chrono::steady_clock::time_point lastDrawn_;
};
