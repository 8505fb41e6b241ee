// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/hostcheck/MHostCheck.h"

#include "core/MException.h"
#include "core/MFormat.h"
#include "core/MText.h"
#include "tools/hostcheck/MHostRules.h"
#include "tools/hostcheck/MRawFile.h"
#include "tools/hostcheck/MVst2Host.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <map>
#include <optional>

using namespace Vst2;

namespace {

using Clock = std::chrono::steady_clock;
using Channels = std::vector<std::vector<float>>;

double MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Channels as a plug-in wants them, with as many as it has.
Channels MakeChannels(int count, int frames) {
    return Channels(static_cast<std::size_t>(std::max(count, 1)), std::vector<float>(frames));
}

std::vector<float*> PointersOf(Channels& channels) {
    std::vector<float*> pointers;
    for (std::vector<float>& channel : channels) pointers.push_back(channel.data());
    return pointers;
}

int ReadCount(const std::string& name, const std::string& text) {
    const auto number = MText::ReadNumber(text);
    if (!number || *number < 1 || *number > 1e7 || std::floor(*number) != *number) {
        throw MException(MFormat("{0} takes a whole number, not \"{1}\"", name, text));
    }
    return static_cast<int>(*number);
}

/// The transport of a song that plays from its start.
VstTimeInfo TimeAt(double frame, const MHostCheckOptions& options) {
    VstTimeInfo time = {};
    time.samplePos = frame;
    time.sampleRate = options.sampleRate;
    time.tempo = options.tempo;
    time.ppqPos = time.samplePos / time.sampleRate * time.tempo / 60;
    time.barStartPos = std::floor(time.ppqPos / 4) * 4;
    time.timeSigNumerator = time.timeSigDenominator = 4;
    time.flags =
        kVstTransportPlaying | kVstPpqPosValid | kVstTempoValid | kVstBarsValid | kVstTimeSigValid;
    return time;
}

void Set(MVst2Host& host, const std::string& setting) {
    const std::size_t equals = setting.find('=');
    const auto index = host.FindParameter(MText::Trim(setting.substr(0, equals)));
    if (equals == std::string::npos || !index) {
        throw MException(MFormat("\"{0}\" names no parameter", setting));
    }
    if (!host.SetParameterText(*index, setting.substr(equals + 1))) {
        throw MException(MFormat("the plug-in does not understand \"{0}\"", setting));
    }
}

}  // namespace

const char* MHostCheck::Usage() {
    return "Usage: kestrune-hostcheck LIBRARY [INPUT OUTPUT] [OPTION VALUE]...\n"
           "Loads a VST 2.4 plug-in as a host does and says what it found, and which of the rules\n"
           "that hosts rely on it breaks; renders INPUT to OUTPUT, both raw interleaved 32-bit\n"
           "floats.\n"
           "  --set NAME=TEXT   sets a parameter; may be repeated\n"
           "  --state FILE      loads a state first\n"
           "  --channels N (2), --rate HERTZ (48000), --block FRAMES (512), --bpm TEMPO (120)\n";
}

MHostCheckOptions MHostCheckOptions::Parse(const std::vector<std::string>& arguments) {
    MHostCheckOptions options;
    const std::map<std::string, int*> counts = {{"--channels", &options.channels},
                                                {"--rate", &options.sampleRate},
                                                {"--block", &options.blockSize}};
    const std::vector<std::string*> files = {&options.library, &options.input, &options.output};
    std::size_t file = 0;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& name = arguments[i];
        if (!name.starts_with("--")) {
            if (file == files.size()) throw MException(MHostCheck::Usage());
            *files[file++] = name;
            continue;
        }
        if (++i == arguments.size()) throw MException(MHostCheck::Usage());
        if (const auto count = counts.find(name); count != counts.end()) {
            *count->second = ReadCount(name, arguments[i]);
        } else if (name == "--bpm") {
            options.tempo = ReadCount(name, arguments[i]);
        } else if (name == "--state") {
            options.state = arguments[i];
        } else if (name == "--set") {
            options.settings.push_back(arguments[i]);
        } else {
            throw MException(MHostCheck::Usage());
        }
    }
    if (file != 1 && file != files.size()) throw MException(MHostCheck::Usage());
    return options;
}

/// What hosts do for their list of plug-ins: the entry, the names, the parameters, and out again.
double MHostCheck::Scan(std::string& identity) const {
    const auto start = Clock::now();
    const MPluginLibrary library(options_.library);
    MVst2Host host(library.FindVst2Entry());
    std::size_t longestName = 0;
    for (int i = 0; i < host.ParameterCount(); ++i) {
        longestName = std::max(longestName, host.Text(effGetParamName, i).size());
    }
    const AEffect& effect = host.Effect();
    identity = MFormat("{0} by {1}, {2} inputs, {3} outputs, {4} parameters (longest name {5})",
                       host.Text(effGetEffectName), host.Text(effGetVendorString), effect.numInputs,
                       effect.numOutputs, effect.numParams, static_cast<int>(longestName));
    return MillisecondsSince(start);
}

/// From nothing to the first block of sound.
double MHostCheck::FirstBlock(double& unload) const {
    const auto start = Clock::now();
    auto unloadStart = start;
    double first = 0;
    {
        const MPluginLibrary library(options_.library);
        MVst2Host host(library.FindVst2Entry());
        host.Start(options_.channels, options_.sampleRate, options_.blockSize);
        Channels in = MakeChannels(host.Effect().numInputs, options_.blockSize);
        Channels out = MakeChannels(host.Effect().numOutputs, options_.blockSize);
        host.Process(PointersOf(in).data(), PointersOf(out).data(), options_.blockSize);
        first = MillisecondsSince(start);
        unloadStart = Clock::now();
    }
    unload = MillisecondsSince(unloadStart);
    return first;
}

std::string MHostCheck::Report() const {
    std::string identity;
    double unload = 0;
    const double scan = Scan(identity);
    const double firstBlock = FirstBlock(unload);
    return MFormat(
        "{0}\nscan: {1;.2} ms\nlibrary to first block: {2;.2} ms\n"
        "close and unload: {3;.2} ms\n",
        identity, scan, firstBlock, unload);
}

std::vector<std::string> MHostCheck::Faults() const {
    const MPluginLibrary library(options_.library);
    return MHostRules::Faults(library.FindVst2Entry());
}

void MHostCheck::Render() const {
    const MPluginLibrary library(options_.library);
    MVst2Host host(library.FindVst2Entry());
    if (!options_.state.empty()) host.LoadState(MRawFile::ReadBytes(options_.state));
    for (const std::string& setting : options_.settings) Set(host, setting);
    if (!host.Start(options_.channels, options_.sampleRate, options_.blockSize)) {
        throw MException(MFormat("the plug-in does not take {0} channels", options_.channels));
    }
    const std::vector<float> input = MRawFile::ReadSamples(options_.input);
    std::vector<float> output(input.size());
    Channels in = MakeChannels(host.Effect().numInputs, options_.blockSize);
    Channels out = MakeChannels(host.Effect().numOutputs, options_.blockSize);
    const auto width = static_cast<std::size_t>(options_.channels);
    const std::size_t frames = input.size() / width;
    for (std::size_t at = 0; at < frames;) {
        const std::size_t count =
            std::min(frames - at, static_cast<std::size_t>(options_.blockSize));
        for (std::size_t i = 0; i < count * width; ++i) {
            in[i % width][i / width] = input[at * width + i];
        }
        host.SetTime(TimeAt(static_cast<double>(at), options_));
        host.Process(PointersOf(in).data(), PointersOf(out).data(), static_cast<int>(count));
        for (std::size_t i = 0; i < count * width; ++i) {
            output[at * width + i] = out[i % width][i / width];
        }
        at += count;
    }
    MRawFile::WriteSamples(options_.output, output);
}
