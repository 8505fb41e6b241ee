// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MBiquad.h"

#include <cmath>
#include <numbers>
#include <span>
#include <vector>

/// The analog crossover written down plainly, from the formula of each band: channel after channel,
/// band after band, section after section, sample after sample. What the fast form is measured
/// against, in speed and in sound.
class MAnalogTranscription {
public:
    /// `slope` counts as the stored slope does: 0 is 12 dB/oct, 1 .. 5 are that many sections
    /// twice.
    MAnalogTranscription(std::span<const double> frequencies, double sampleRate, int slope)
        : bandCount_(static_cast<int>(frequencies.size()) + 1), slope_(slope) {
        for (const double frequency : frequencies) {
            Point point;
            for (int k = 0; k < slope; ++k) {
                const double q =
                    1 / (2 * std::cos((2 * (slope - k) - 1) * std::numbers::pi / (4 * slope)));
                point.high.push_back(DesignBiquad(BiquadType::HighPass, frequency, q, sampleRate));
                point.low.push_back(DesignBiquad(BiquadType::LowPass, frequency, q, sampleRate));
                point.all.push_back(DesignBiquad(BiquadType::AllPass, frequency, q, sampleRate));
            }
            if (slope == 0) {
                const double pole = std::exp(-2 * std::numbers::pi * frequency / sampleRate) +
                                    kBiquadCoefficientBias;
                point.high = {DesignBiquad(BiquadType::HighPass, frequency, 0.5, sampleRate)};
                point.low = {DesignBiquad(BiquadType::LowPass, frequency, 0.5, sampleRate)};
                point.all = {{pole, 0, 0, -0.999999999999999, pole}};
            }
            points_.push_back(point);
        }
        bands_.resize(static_cast<std::size_t>(bandCount_));
    }

    /// Writes band `band` of `input` into `output`; bands in ascending order.
    void ProcessBand(int band, std::span<const double> input, std::span<double> output) {
        if (band >= 2) {
            if (band == 2) chain_.assign(input.begin(), input.end());
            chainStates_.resize(points_.size());
            Run(points_[band - 2].all, chainStates_[band - 2], chain_);
        }
        const std::span<const double> source = band >= 2 ? std::span<const double>(chain_) : input;
        for (std::size_t i = 0; i < source.size(); ++i) output[i] = source[i];

        States& states = bands_[band];
        states.resize(2 * (points_.size() + 1));
        const int times = slope_ == 0 ? 1 : 2;
        for (int i = 0; i < times && band > 0; ++i) {
            Run(points_[band - 1].high, states[i], output);
        }
        for (int j = band; j < bandCount_ - 1; ++j) {
            for (int i = 0; i < times; ++i) {
                Run(points_[j].low, states[2 * (j + 1) + i], output);
            }
        }
        if (slope_ == 0 && band % 2 == 1) {
            for (double& sample : output) sample = -sample;
        }
    }

private:
    using Cascade = std::vector<MBiquadCoefficients>;
    using States = std::vector<std::vector<MBiquadState>>;
    struct Point {
        Cascade high, low, all;
    };

    static void Run(const Cascade& cascade, std::vector<MBiquadState>& states,
                    std::span<double> samples) {
        states.resize(cascade.size());
        for (std::size_t k = 0; k < cascade.size(); ++k) RunBiquad(cascade[k], states[k], samples);
    }

    int bandCount_, slope_;
    std::vector<Point> points_;
    std::vector<States> bands_;
    States chainStates_;
    std::vector<double> chain_;
};
