// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayFilters.h"
#include "tests/support/EngineRun.h"
#include "tests/support/Response.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

namespace {

using Complex = std::complex<double>;

constexpr int kRate = 48000;
constexpr int kDelay = 9600;  // samples: long enough for a filter to fade between two echoes

/// A mono tap that only delays: what its filters do is all that is heard.
MDelaySettings Plain(bool filtersFeedback, double minFrequency, double maxFrequency,
                     double resonance) {
    MDelaySettings settings = DefaultDelaySettings();
    settings.taps[0].delay = static_cast<double>(kDelay) / kRate;
    settings.taps[0].gain = Held(1);
    settings.taps[0].feedback = Held(0);
    settings.filtersFeedback = filtersFeedback;
    settings.minFrequency = minFrequency;
    settings.maxFrequency = maxFrequency;
    settings.resonance = resonance;
    return settings;
}

/// The first echo of an impulse, from where it is due up to the next one.
std::vector<float> FirstEcho(const MDelaySettings& settings, float amplitude = 1) {
    EngineRun run(1, kRate, settings);
    const Sound output = run.Run(Impulse({amplitude}, 2 * kDelay));
    return {output[0].begin() + kDelay, output[0].end()};
}

/// Both analog filters at `frequency`, each axis bent by the bilinear transform.
Complex Analog(const MDelaySettings& settings, double frequency) {
    const double q = 0.1 + 0.8 * settings.resonance;
    const auto axis = [&](double edge) {
        const double half = std::numbers::pi / kRate;
        return Complex(0, std::tan(half * frequency) / std::tan(half * edge));
    };
    Complex response = 1;
    if (settings.maxFrequency < 19999.5) {
        const Complex s = axis(settings.maxFrequency);
        response /= s * s + s / q + 1.0;
    }
    if (settings.minFrequency > 20.5) {
        const Complex s = axis(settings.minFrequency);
        response *= s * s / (s * s + s / q + 1.0);
    }
    return response;
}

const struct {
    double low, high, resonance;
} kEdges[] = {{20, 1000, 0.5},  {20, 12000, 0}, {400, 20000, 0.5},
              {4000, 20000, 1}, {300, 3000, 1}, {2000, 500, 0.25}};

}  // namespace

TEST(MDelayFilters, AnswerAsTheAnalogPairInEitherPlace) {
    for (const auto& edges : kEdges) {
        for (const bool filtersFeedback : {false, true}) {
            const MDelaySettings settings =
                Plain(filtersFeedback, edges.low, edges.high, edges.resonance);
            const std::vector<float> echo = FirstEcho(settings);
            for (const double probe :
                 {10.0, 100.0, 400.0, 1000.0, 3000.0, 8000.0, 15000.0, 23000.0}) {
                EXPECT_LT(std::abs(ResponseAt(echo, probe, kRate) - Analog(settings, probe)), 2e-5)
                    << edges.low << " to " << edges.high << " at " << probe << ", feedback "
                    << filtersFeedback;
            }
        }
    }
}

TEST(MDelayFilters, SwitchOffWithinOneHertzOfTheEnds) {
    const struct {
        double low, high;
        bool filters;
    } rows[] = {{20, 20000, false}, {20.99, 19999.01, false}, {20, 19999, true}, {21, 20000, true}};
    for (const auto& row : rows) {
        for (const bool filtersFeedback : {false, true}) {
            const std::vector<float> echo =
                FirstEcho(Plain(filtersFeedback, row.low, row.high, 0.5));
            const bool isClean = echo[0] == 1 && std::all_of(echo.begin() + 1, echo.end(),
                                                             [](float x) { return x == 0; });
            EXPECT_EQ(isClean, !row.filters) << row.low << " to " << row.high;
        }
    }
}

TEST(MDelayFilters, RunHighPassFirstInTheLoop) {
    // Between the two stands the clamp: 1000 leaves the high-pass as 10 and the low-pass scales
    // that.
    const double q = static_cast<double>(0.5f);
    const double b0 = DesignBiquad(BiquadType::LowPass, 500, q, kRate).b0;
    const std::vector<float> echo = FirstEcho(Plain(true, 2000, 500, 0.5), 1000);
    EXPECT_NEAR(static_cast<double>(echo[0]), 10 * b0, 1e-6);
    EXPECT_GT(1000 * b0, 1) << "low-pass first would have come out far louder";
}
