// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

/// What a render came to.
struct MRenderSummary {
    std::string output;  ///< path as the user gave it
    int channels = 0;
    int sampleRate = 0;         ///< hertz
    double seconds = 0;         ///< length of the output
    double tailSeconds = 0;     ///< of that, what follows the end of the input
    bool tailWasCut = false;    ///< still sounding at the tail's ceiling
    double elapsedSeconds = 0;  ///< wall-clock time, files included
    double peak = 0;            ///< largest absolute sample in the file before rounding, 1 = 0 dBFS
    double guardGain = 1;       ///< what the gain guard multiplied the output with
    int latencyFrames = 0;      ///< of the processor, whether compensated or not
    double missingSeconds = 0;  ///< by which the input was cut off before its stated end
    int lateSettings = 0;       ///< timed settings that the render ended before
    long long clippedSamples = 0;  ///< samples at the limit of a 16 or 24 bit format

    /// Seconds of output for each second of work. [main]
    double TimesRealTime() const;
    /// One line for people. [main]
    std::string Text() const;
    /// One line for scripts: a JSON object. [main]
    std::string Json() const;
};
