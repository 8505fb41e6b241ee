// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MRenderOptions.h"

#include "adapters/modulation/MModulationPlan.h"
#include "core/MFormat.h"
#include "core/MText.h"
#include "tools/render/MBandArguments.h"
#include "tools/render/MModulationSource.h"
#include "tools/render/MRenderFailure.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr const char* kDescription =
    "Sends an audio file through the delay: reads WAV, FLAC, Ogg or MP3, writes WAV.";

constexpr const char* kFooterBeforeShapes = R"(Parameters
  --set takes a parameter's name and its value as the parameter shows it: "Delay=250 ms",
  "Feedback=-6 dB", "Min frequency=200 Hz", "Mode=PingPong", "Freeze=on". Case does not matter.
  A plain name means the first tap of every band: "Delay", "Tap 2 Delay", "Band 3 Delay",
  "Band 3 Tap 2 Delay". What a host lists works as well ("B3 T2 Delay"), and so do the keys of
  presets, which count taps from nothing: tap1 is the switch of "Tap 2", delay1 is "Tap 2 Delay".
  The bands' own settings are "Band gain 2", "Band panorama 2" and "Band limit 1".
  A tap follows the tempo when its delay is a note: "Delay=1/4", "1/8d" or "1/8 dotted", "1/8t".
  Its echoes come twice per note, so 1/4d gives dotted eighths. "Tap 1 Sync=off" goes back to the
  time. "Sync=1/4" says the same, and "Tap 1 Length=1/8" changes the note alone.
  --at sets a parameter at a moment of the input: --at "2.5 Freeze=on". Changes glide over one block.

Bands
  One band is the default: the delay alone, without a crossover. More come with --bands, which
  splits at the plug-in's usual frequencies, or with --limits, one fewer than bands.
  "analog" is fast and turns the phase, "linear" is steep and keeps it, "hybrid" keeps it too and is
  as steep as the analog one; the last two come 3072 frames late, which the output does not show
  unless --no-latency-compensation asks for it.

States
  --state loads what a host has saved (the bytes of a chunk), XML text or an exported preset, and with
  it all bands; what else is set comes on top. --save-state writes the state that this makes: XML text,
  or compressed as hosts keep it when the name ends in .chunk or .bin. Without an input it does only
  that, which turns one form into the other.

Automation
  --automation reads lanes from a JSON file:
    [{"parameter": "Band 2 Tap 1 Delay", "curve": "linear",
      "points": [{"time": 1.5, "value": "250 ms"}, {"time": 4, "value": "20 ms"}]}]
  "curve" is "step" (the default) or "linear"; "unit" says what times count: "seconds" (the default),
  "samples" or "beats". {"unit": "beats", "lanes": [...]} sets it for the whole file. A value is a text
  as above, a number in the units of --list-parameters --json, true, false or {"normalised": 0.5}.

Modulation
  --modulate lets a source move parameters, up to four times: --modulate "SOURCE -> NAME: WAY; ...".
  A source is a shape: )";

constexpr const char* kFooterAfterShapes = R"(
  (stepped and smooth are random), each with a rate or a note ("sine 0.5 Hz", "saw 1/4d") and, as
  wanted, phase 25%, width 30%, glide 10%, seed 7, once, values 0 0.5 1 (of steps); walk 2 Hz
  smoothness 50% (a random walk); follower attack 5 ms release 200 ms threshold -40 dB knee 6 dB range
  40 dB, which follows the level of the input; or envelope attack 10 ms decay 100 ms sustain 50%
  release 200 ms velocity 100%, which the notes of --midi start and end. All take depth 50%, offset
  10%, lag 20 ms and invert. A way is a range, "200 Hz .. 800 Hz", or a part of the parameter's whole:
  "+-20%" around where it stands, "+20%" above, "-20%" below. Sources that meet at one parameter add up.

Examples
  kestrune-render loop.flac out.wav --set "Delay=120 ms" --set "Feedback=-20 dB"
  kestrune-render loop.flac out.wav --bpm 137 --set "Delay=1/4d" --set "Mode=PingPong"
  kestrune-render loop.flac out.wav --set "Tap 2=on" --set "Tap 2 Delay=300 ms" --tail 5
  kestrune-render loop.flac out.wav --limits 200,2000 --crossover linear --mute 1
    --set "Band 2 Delay=1/8" --set "Band 3 Delay=1/8d" --set "Band gain 3=-6 dB"
  kestrune-render loop.flac out.wav --limits 400 --modulate "sine 1/4 -> Band limit 1: 200 Hz .. 800 Hz"
    --modulate "follower invert -> Wet: 20% .. 100%"
  kestrune-render loop.flac out.wav --midi keys.mid --modulate "envelope release 1 s -> Feedback: +40%"
  kestrune-render loop.flac out.wav --preset "Dub/Tape echo" --bpm 137 --set "Wet=30%"
  kestrune-render loop.flac out.wav --bands 4 --slope 48 --automation sweep.json --wet "-3 dB"
  kestrune-render loop.flac out.wav --state preset.xml --set "Band 2 Delay=1/8"
  kestrune-render --state project.chunk --save-state project.xml

Exit status
  0 done, 2 wrong usage, 3 a file cannot be read or written, 4 processing failed.)";

/// Options as typed; texts are read once all of them are known.
struct Typed {
    MBandArguments bands;
    std::vector<std::pair<std::string, std::string>> levels;  // parameter and text
    bool bypass = false;
    bool keepsLatency = false;
    std::string tail = "auto";
    double tailMax = 60;
    std::string format = "32";
    bool noDither = false;
    bool listParameters = false;
    bool listPresets = false;
};

MTail ReadTail(const std::string& typed, double tailMax) {
    constexpr double kLongest = 24 * 3600;  // seconds
    if (!(tailMax >= 0 && tailMax <= kLongest)) FailUsage("--tail-max takes seconds, 0 to 86400");
    if (MText::EqualsIgnoringCase(typed, "auto")) return {MTail::Kind::Auto, tailMax};
    if (MText::EqualsIgnoringCase(typed, "none")) return {MTail::Kind::None, 0};
    const auto number = MText::ReadLeadingNumber(typed);
    const bool isSeconds = number && (number->rest.empty() || number->rest == "s");
    if (!isSeconds || number->value < 0 || number->value > kLongest) {
        FailUsage("--tail does not take \"" + typed +
                  "\"; it takes auto, none or seconds up to 86400");
    }
    return {MTail::Kind::Seconds, number->value};
}

MSampleFormat ReadFormat(const std::string& typed) {
    static const std::map<std::string, MSampleFormat> formats = {
        {"16", MSampleFormat::Pcm16},    {"24", MSampleFormat::Pcm24},
        {"32", MSampleFormat::Float32},  {"float", MSampleFormat::Float32},
        {"pcm16", MSampleFormat::Pcm16}, {"pcm24", MSampleFormat::Pcm24}};
    const auto found = formats.find(MText::ToLower(typed));
    if (found == formats.end()) {
        FailUsage("--format does not take \"" + typed + "\"; it takes float, 24 or 16");
    }
    return found->second;
}

/// Refuses names that promise a format which is not written.
void CheckOutputName(const std::filesystem::path& output) {
    constexpr std::array<std::string_view, 7> kOthers = {".flac", ".ogg",  ".oga", ".mp3",
                                                         ".aif",  ".aiff", ".opus"};
    const std::string extension = MText::ToLower(output.extension().string());
    if (std::find(kOthers.begin(), kOthers.end(), extension) != kOthers.end()) {
        FailUsage("the output is a WAV file; " + output.string() + " should end in .wav");
    }
}

void DefineParameters(CLI::App& app, MRenderOptions& options, Typed& typed) {
    app.add_option("--preset", options.preset,
                   "Start from a preset, such as \"Dub/Tape echo\"; it brings its own bands")
        ->type_name("PATH");
    app.add_option("--set", options.settings, "Set a parameter, as name=value; may be repeated")
        ->allow_extra_args(false)
        ->type_name("NAME=VALUE");
    app.add_option("--at", options.timedSettings, "Set a parameter later; may be repeated")
        ->allow_extra_args(false)
        ->type_name("'SECONDS NAME=VALUE'");
    app.add_option("--automation", options.automationFiles,
                   "Move parameters as a JSON file says; may be repeated")
        ->allow_extra_args(false)
        ->type_name("FILE");
    app.add_option("--state", options.state, "Load a state: a host's chunk or XML text")
        ->type_name("FILE");
    app.add_option("--save-state", options.savedState,
                   "Write the state as XML text, or as a chunk to a .chunk or .bin file")
        ->type_name("FILE");
    app.add_option("--midi", options.midiFile,
                   "Play a MIDI file from the start of the input, at the file's own tempo")
        ->type_name("FILE");
    app.add_option("--modulate", options.modulations,
                   "Let a modulator move parameters; up to four times")
        ->allow_extra_args(false)
        ->type_name("'SOURCE -> NAME: WAY; ...'");
    const auto defineLevel = [&](const char* option, const char* parameter, const char* help) {
        app.add_option_function<std::string>(
               option,
               [&typed, parameter](const std::string& text) {
                   typed.levels.emplace_back(parameter, text);
               },
               help)
            ->type_name("LEVEL");
    };
    defineLevel("--wet", "Wet", "Level of the echoes, such as 70% or -3 dB: the parameter Wet");
    defineLevel("--dry", "Dry", "Level of the input: the parameter Dry");
    app.add_flag("--bypass", typed.bypass, "Bypass the whole plug-in: the parameter Bypass");
    app.add_option("--bpm", options.render.tempo, "Tempo in quarter notes per minute, 1 to 999")
        ->capture_default_str();
}

void DefineBands(CLI::App& app, MBandArguments& bands) {
    app.add_option("--bands", bands.bands, "How many bands the sound is split into, 1 to 6 [1]");
    app.add_option("--crossover", bands.crossover,
                   "What splits it: analog, linear or hybrid [analog]");
    app.add_option("--slope", bands.slope,
                   "Steepness of the analog crossover in dB/oct: 12, 24, 48, 72, 96 or 120 [24];\n"
                   "the others have their own");
    app.add_option("--limits", bands.limits, "Where it is split, in hertz, such as 200,2000")
        ->delimiter(',')
        ->allow_extra_args(false);
    const auto defineList = [&](const char* option, std::vector<int>& list, const char* help) {
        app.add_option(option, list, help)
            ->delimiter(',')
            ->allow_extra_args(false)
            ->type_name("BAND,...");
    };
    defineList("--mute", bands.mute, "Leave bands out, counted from 1, the lowest");
    defineList("--solo", bands.solo, "Leave all other bands out");
    defineList("--bypass-band", bands.bypassBands, "Pass bands through without the delay");
}

void DefineFiles(CLI::App& app, MRenderOptions& options, Typed& typed) {
    MRenderSettings& render = options.render;
    app.add_option("input", render.input, "File to read");
    app.add_option("output", render.output, "WAV file to write");
    app.add_option("--plugin", options.plugin,
                   "Render with this library, loaded as a host loads it, not with what is built in")
        ->type_name("LIBRARY");
    app.add_option("--tail", typed.tail, "Render on after the input: auto, none or seconds")
        ->capture_default_str();
    app.add_option("--tail-max", typed.tailMax, "Longest automatic tail in seconds")
        ->capture_default_str();
    app.add_option("--format,--bits", typed.format, "Samples of the output: 32 (float), 24 or 16")
        ->capture_default_str();
    app.add_flag("--no-dither", typed.noDither, "Round to 16 bit without dither");
    app.add_flag("--gain-guard", render.gainGuard,
                 "When the output would clip, lower all of it to a peak of -0.1 dBFS");
    app.add_flag("--no-latency-compensation", typed.keepsLatency,
                 "Let the output come as late as the plug-in is");
    app.add_option("--block-size", render.blockSize, "Frames per block, 1 to 65536")
        ->capture_default_str();
    app.add_flag("--overwrite", render.overwrite, "Replace the output if it exists");
}

void DefineReports(CLI::App& app, MRenderOptions& options, Typed& typed) {
    app.add_flag("--list-parameters", typed.listParameters,
                 "Show every parameter of the first band, with what --set made of it, and stop");
    app.add_flag("--list-presets", typed.listPresets, "Show every preset and stop");
    app.add_flag("--all", options.listsAllBands, "Show those of the other bands, too");
    app.add_flag("--json", options.json, "Write the summary, or the list of all bands, as JSON");
    app.add_flag("-q,--quiet", options.quiet, "No progress bar");
    app.set_version_flag("--version", "kestrune-render " KESTRUNE_VERSION);
}

/// Puts the options that stand for settings before the settings, which may then say otherwise.
void AddLevels(const Typed& typed, MRenderOptions& options) {
    std::vector<std::string> settings;
    for (const auto& [parameter, text] : typed.levels) {
        settings.push_back(MFormat("{0}={1}", parameter, text));
    }
    if (typed.bypass) settings.emplace_back("Bypass=on");
    options.settings.insert(options.settings.begin(), settings.begin(), settings.end());
}

/// Throws for what is out of range or does not go together.
void Check(const MRenderOptions& options, const Typed& typed) {
    const MRenderSettings& render = options.render;
    if (!(render.tempo >= 1 && render.tempo <= 999)) FailUsage("--bpm takes 1 to 999");
    if (render.blockSize < 1 || render.blockSize > 65536)
        FailUsage("--block-size takes 1 to 65536");
    const bool bringsBands = !options.state.empty() || !options.preset.empty();
    if (!options.state.empty() && !options.preset.empty()) {
        FailUsage("--state and --preset do not go together");
    }
    if (bringsBands && !typed.bands.IsEmpty()) {
        FailUsage(
            "--state and --preset bring bands of their own; --bands and the like do not go with "
            "them");
    }
    if (options.modulations.size() > MModulationPlan::kModulators) {
        FailUsage("there are four modulators; --modulate is given too often");
    }
}

}  // namespace

MRenderOptions MRenderOptions::Parse(int argc, const char* const* argv) {
    MRenderOptions options;
    Typed typed;
    CLI::App app(kDescription, "kestrune-render");
    app.footer(kFooterBeforeShapes + MListShapes() + kFooterAfterShapes);
    DefineFiles(app, options, typed);
    DefineBands(app, typed.bands);
    DefineParameters(app, options, typed);
    DefineReports(app, options, typed);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        options.text = app.help();
    } catch (const CLI::CallForVersion&) {
        options.text = app.version() + "\n";
    } catch (const CLI::ParseError& error) {
        FailUsage(std::string(error.what()) + " (see --help)");
    }
    if (!options.text.empty()) {
        options.action = Action::ShowText;
        return options;
    }
    Check(options, typed);
    MRenderSettings& render = options.render;
    options.bands = typed.bands.Read();
    AddLevels(typed, options);
    render.compensatesLatency = !typed.keepsLatency;
    render.tail = ReadTail(typed.tail, typed.tailMax);
    render.format = ReadFormat(typed.format);
    render.dither = !typed.noDither;
    if (typed.listParameters || typed.listPresets) {
        options.action = typed.listPresets ? Action::ListPresets : Action::ListParameters;
        return options;
    }
    if (render.input.empty() && !options.savedState.empty()) {
        options.action = Action::SaveState;
        return options;
    }
    if (render.input.empty() || render.output.empty()) {
        FailUsage("an input and an output file are needed (see --help)");
    }
    CheckOutputName(render.output);
    return options;
}
