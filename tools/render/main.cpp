// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "product/MProductFiles.h"
#include "tools/render/MAutomationFile.h"
#include "tools/render/MLibraryProcessor.h"
#include "tools/render/MMIDIFile.h"
#include "tools/render/MModulationReader.h"
#include "tools/render/MParameterTable.h"
#include "tools/render/MPluginProcessor.h"
#include "tools/render/MPresetNames.h"
#include "tools/render/MProgressBar.h"
#include "tools/render/MRenderFailure.h"
#include "tools/render/MRenderOptions.h"
#include "tools/render/MSettingReader.h"
#include "tools/render/MStateFile.h"
#include "tools/render/MStopSignal.h"

#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace {

std::vector<MRenderLane> ReadLanes(const MRenderOptions& options, const MSettingReader& reader) {
    std::vector<MRenderLane> lanes;
    for (const std::filesystem::path& file : options.automationFiles) {
        const auto read = MReadAutomation(file, reader);
        lanes.insert(lanes.end(), read.begin(), read.end());
    }
    for (const std::string& setting : options.timedSettings) {
        lanes.push_back(reader.ReadTimed(setting));
    }
    return lanes;
}

void Render(const MRenderOptions& options, MBlockProcessor& processor,
            std::vector<MRenderLane> lanes) {
    MRenderSummary summary;
    {
        const MStopSignal signal;
        MProgressBar bar(options.quiet);
        MRenderJob job(options.render, processor, std::move(lanes));
        if (!options.midiFile.empty()) job.SetMIDI(MReadMIDIFile(options.midiFile));
        job.SetProgress([&](double seconds, std::optional<double> share) {
            if (MStopSignal::Arrived() != 0) throw MRenderCancelled();
            bar.Show(seconds, share);
        });
        summary = job.Run();
    }
    std::cout << (options.json ? summary.Json() : summary.Text()) << "\n";
}

void SetUpModulators(const MRenderOptions& options, MPluginProcessor& plugin) {
    const MParameterList list(plugin);
    const MSettingReader reader(list);
    int modulator = 0;
    for (const std::string& text : options.modulations) {
        plugin.Modulate(modulator++, MModulationReader(reader), text);
    }
}

void Run(int argc, const char* const* argv) {
    const MRenderOptions options = MRenderOptions::Parse(argc, argv);
    if (options.action == MRenderOptions::Action::ShowText) {
        std::cout << options.text;
        return;
    }
    if (options.action == MRenderOptions::Action::ListPresets) {
        const MPresetNames presets(MProductFiles::MakePresets()->List());
        std::cout << (options.json ? presets.Json() + "\n" : presets.Table());
        return;
    }
    MPluginProcessor plugin(options.bands);
    if (!options.state.empty()) plugin.LoadState(options.state);
    if (!options.preset.empty()) {
        const MPresetNames presets(MProductFiles::MakePresets()->List());
        plugin.LoadPreset(presets.Find(options.preset));
    }
    SetUpModulators(options, plugin);
    std::optional<MLibraryProcessor> library;
    if (!options.plugin.empty()) library.emplace(options.plugin, plugin);
    MBlockProcessor& processor = library ? static_cast<MBlockProcessor&>(*library) : plugin;
    const MParameterList list(processor);
    const MSettingReader reader(list);
    for (const std::string& setting : options.settings) {
        for (const MRenderWrite& write : reader.Read(setting)) {
            processor.SetParameter(write.parameter, write.value);
        }
    }
    if (!options.savedState.empty()) {
        MStateFile::Save(plugin.Plugin(), options.savedState, options.render.overwrite);
    }
    if (options.action == MRenderOptions::Action::SaveState) return;
    if (options.action == MRenderOptions::Action::ListParameters) {
        std::cout << (options.json ? MWriteParameterJson(list) + "\n"
                                   : MWriteParameterTable(list, options.listsAllBands));
        return;
    }
    Render(options, processor, ReadLanes(options, reader));
}

int Report(MExitCode code, const std::string& text) {
    std::cerr << "kestrune-render: " << text << "\n";
    return static_cast<int>(code);
}

}  // namespace

int main(int argc, char** argv) {
    MIgnoreFileSizeSignal();
    try {
        Run(argc, argv);
        std::cout.flush();
        if (!std::cout) return Report(MExitCode::File, "cannot write to standard output");
        return static_cast<int>(MExitCode::Ok);
    } catch (const MRenderCancelled&) {
        MEndBySignal(MStopSignal::Arrived());
    } catch (const MRenderFailure& failure) {
        return Report(failure.Code(), failure.Text());
    } catch (const std::exception& failure) {
        return Report(MExitCode::Processing, failure.what());
    }
}
