// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "tools/render/MAutomationFile.h"
#include "tools/render/MParameterTable.h"
#include "tools/render/MPluginProcessor.h"
#include "tools/render/MProgressBar.h"
#include "tools/render/MRenderFailure.h"
#include "tools/render/MRenderOptions.h"
#include "tools/render/MSettingReader.h"
#include "tools/render/MStopSignal.h"

#include <exception>
#include <iostream>
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
        job.SetProgress([&](double seconds, std::optional<double> share) {
            if (MStopSignal::Arrived() != 0) throw MRenderCancelled();
            bar.Show(seconds, share);
        });
        summary = job.Run();
    }
    std::cout << (options.json ? summary.Json() : summary.Text()) << "\n";
}

void Run(int argc, const char* const* argv) {
    const MRenderOptions options = MRenderOptions::Parse(argc, argv);
    if (options.action == MRenderOptions::Action::ShowText) {
        std::cout << options.text;
        return;
    }
    MPluginProcessor processor(options.bands);
    const MParameterList list(processor);
    const MSettingReader reader(list);
    for (const std::string& setting : options.settings) {
        for (const MRenderWrite& write : reader.Read(setting)) {
            processor.SetParameter(write.parameter, write.value);
        }
    }
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
