// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

/// What the times of a lane count.
enum class MTimeUnit {
    Seconds,
    Samples,  ///< frames of the input
    Beats     ///< quarter notes at the render's tempo
};

/// One parameter and the value it is to have.
struct MRenderWrite {
    int parameter = 0;  ///< index among the processor's parameters
    double value = 0;   ///< in the record's own units
};

/// What is set at one moment; several parameters when a name means all bands, or a text several
/// settings.
struct MRenderPoint {
    double time = 0;  ///< from the start of the input, in the lane's unit
    std::vector<MRenderWrite> writes;
};

/// How parameters change in the course of a render.
struct MRenderLane {
    MTimeUnit unit = MTimeUnit::Seconds;
    /// Straight lines from point to point, whose writes then name the same parameters; otherwise
    /// every value stays until the next point.
    bool isLinear = false;
    std::vector<MRenderPoint> points;  ///< by time
};
