// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MRenderSummary.h"

#include "core/MFormat.h"
#include "tools/render/MJsonWriter.h"

#include <algorithm>
#include <cmath>

namespace {

std::string PeakText(double peak) {
    if (peak <= 0) return "silent";
    return MFormat("peak {0;.1} dBFS", 20 * std::log10(peak));
}

}  // namespace

double MRenderSummary::TimesRealTime() const { return seconds / std::max(elapsedSeconds, 1e-6); }

std::string MRenderSummary::Text() const {
    std::string text = MFormat("{0}: {1;.2} s, {2;.0} times real time, {3}, tail {4;.2} s", output,
                               seconds, TimesRealTime(), PeakText(peak), tailSeconds);
    if (tailWasCut) text += " (still sounding)";
    if (guardGain < 1) text += MFormat(", lowered by {0;.1} dB", -20 * std::log10(guardGain));
    if (clippedSamples > 0) {
        text += MFormat(", {0} samples clipped (see --gain-guard)", clippedSamples);
    }
    if (missingSeconds > 0) {
        text += MFormat(", the input is cut off {0;.2} s before its stated end", missingSeconds);
    }
    if (lateSettings > 0) text += MFormat(", ended before {0} timed settings", lateSettings);
    return text;
}

std::string MRenderSummary::Json() const {
    MJsonWriter json;
    json.BeginObject();
    json.Member("output", output);
    json.Member("channels", channels);
    json.Member("sampleRate", sampleRate);
    json.Member("seconds", seconds);
    json.Member("tailSeconds", tailSeconds);
    json.Member("tailWasCut", tailWasCut);
    json.Member("elapsedSeconds", elapsedSeconds);
    json.Member("timesRealTime", TimesRealTime());
    json.Member("peak", peak);
    json.Member("guardGain", guardGain);
    json.Member("latencyFrames", latencyFrames);
    json.Member("missingSeconds", missingSeconds);
    json.Member("lateSettings", lateSettings);
    json.Member("clippedSamples", static_cast<double>(clippedSamples));
    json.EndObject();
    return json.Text();
}
