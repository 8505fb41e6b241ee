// SPDX-License-Identifier: GPL-3.0-or-later
// Writes impulse responses of the crossovers, for pictures and for checks by other programs:
//
//     kestrune-responses analog FILE RATE SLOPE LIMIT...     SLOPE: "24dB/oct"
//     kestrune-responses linear FILE RATE LIMIT...
//     kestrune-responses hybrid FILE RATE LIMIT...
//     kestrune-responses kernel FILE RATE ATTENUATION LENGTH FREQUENCY...
//
// The file holds doubles of the machine: for a crossover kLength per band, for "kernel" the 1025
// taps of the low-pass of each frequency, LENGTH of which are not 0 (0: as long as hybrid makes
// them).
#include "core/MException.h"
#include "core/MText.h"
#include "dsp/crossover/MAnalogCrossover.h"
#include "dsp/crossover/MLinearPhaseCrossover.h"

#include <fstream>
#include <iostream>
#include <span>
#include <string_view>
#include <vector>

namespace {

constexpr int kLength = 1 << 17;

using Texts = std::span<const std::string_view>;

double ReadNumber(std::string_view text) {
    const auto number = MText::ReadNumber(text);
    if (!number) throw MException("Not a number: " + std::string(text));
    return *number;
}

std::vector<double> ReadNumbers(Texts texts) {
    std::vector<double> numbers;
    for (const std::string_view text : texts) numbers.push_back(ReadNumber(text));
    return numbers;
}

class Output {
public:
    explicit Output(std::string_view path) : file_(std::string(path), std::ios::binary) {}

    template <class Number>
    void Write(std::span<const Number> numbers) {
        for (const Number number : numbers) {
            const double wide = static_cast<double>(number);
            file_.write(reinterpret_cast<const char*>(&wide), sizeof wide);
        }
        if (!file_) throw MException("The file cannot be written.");
    }

private:
    std::ofstream file_;
};

void WriteAnalog(Output& output, double rate, std::string_view slopeName, Texts limitTexts) {
    const auto slope = MAudioFilters::FindCrossoverSlope(slopeName);
    if (!slope) throw MException("No such slope: " + std::string(slopeName));
    const std::vector<double> limits = ReadNumbers(limitTexts);
    MAnalogCrossover crossover;
    crossover.Design(static_cast<int>(limits.size()) + 1, limits, rate, *slope);
    crossover.BeginBlock();

    std::vector<double> impulse(kLength);
    impulse[0] = 1;
    std::vector<std::vector<double>> bands(limits.size() + 1, impulse);
    std::vector<MChannelPair> pairs;
    pairs.reserve(bands.size());
    for (auto& band : bands) pairs.push_back({band.data(), band.data()});
    MAnalogPairState state;
    crossover.Split(state, impulse.data(), impulse.data(), pairs, kLength);
    for (const auto& band : bands) output.Write(std::span<const double>(band));
}

void WriteLinear(Output& output, double rate, bool fixedQ, Texts limitTexts) {
    const std::vector<double> limits = ReadNumbers(limitTexts);
    MLinearPhaseCrossover crossover;
    crossover.Design(static_cast<int>(limits.size()) + 1, limits, rate, fixedQ);
    crossover.BeginBlock();

    std::vector<float> impulse(kLength);
    impulse[0] = 1;
    std::vector<std::vector<float>> bands(limits.size() + 1, impulse);
    std::vector<float*> pointers;
    pointers.reserve(bands.size());
    for (auto& band : bands) pointers.push_back(band.data());
    MLinearPhaseChannelState state;
    crossover.Split(state, impulse.data(), {}, pointers, kLength);
    for (const auto& band : bands) output.Write(std::span<const float>(band));
}

void WriteKernels(Output& output, double rate, double attenuation, int length, Texts frequencies) {
    constexpr int kFull = MLinearPhaseDesigner::kLength;
    MFIRKernel kernel(MWindow(MWindowType::Kaiser, attenuation));
    for (const double frequency : ReadNumbers(frequencies)) {
        const int taps =
            length == 0 ? LengthOfConstantSteepness(frequency, rate, kFull) : length | 1;
        kernel.DesignLowPass(frequency, rate, kFull, taps);
        output.Write(kernel.Taps());
    }
}

void Run(Texts arguments) {
    if (arguments.size() < 3) throw MException("Too few arguments; the source lists them.");
    const std::string_view kind = arguments[0];
    Output output(arguments[1]);
    const double rate = ReadNumber(arguments[2]);
    const Texts rest = arguments.subspan(3);
    if (kind == "analog" && !rest.empty())
        return WriteAnalog(output, rate, rest[0], rest.subspan(1));
    if (kind == "linear") return WriteLinear(output, rate, false, rest);
    if (kind == "hybrid") return WriteLinear(output, rate, true, rest);
    if (kind == "kernel" && rest.size() > 2) {
        return WriteKernels(output, rate, ReadNumber(rest[0]),
                            static_cast<int>(ReadNumber(rest[1])), rest.subspan(2));
    }
    throw MException("Unknown request; the source lists them.");
}

}  // namespace

int main(int count, char** arguments) {
    try {
        const std::vector<std::string_view> texts(arguments + 1, arguments + count);
        Run(texts);
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << "kestrune-responses: " << failure.what() << '\n';
        return 1;
    }
}
