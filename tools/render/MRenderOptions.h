// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/MBandSetup.h"
#include "tools/render/MRenderJob.h"

#include <filesystem>
#include <string>
#include <vector>

/// What the command line asks for.
struct MRenderOptions {
    enum class Action {
        Render,
        ListParameters,
        ListPresets,
        SaveState,  ///< and nothing else
        ShowText,   ///< help or version, ready in `text`
    };

    Action action = Action::Render;
    std::string text;
    MRenderSettings render;
    MBandSetup bands;
    std::string plugin;                      ///< a library to render with; empty: built in
    std::string preset;                      ///< its path; empty: none, then `bands` hold
    std::filesystem::path state;             ///< to be loaded first; empty for none
    std::filesystem::path savedState;        ///< to be written once all is set; empty for none
    std::vector<std::string> settings;       ///< "name=text", to be applied in this order
    std::vector<std::string> timedSettings;  ///< "seconds name=text"
    std::vector<std::string> modulations;    ///< "source -> targets", up to four
    std::vector<std::filesystem::path> automationFiles;
    std::filesystem::path midiFile;  ///< empty for none
    bool listsAllBands = false;
    bool json = false;
    bool quiet = false;

    /// Reads the arguments of `main`. Throws MRenderFailure (Usage) when they make no sense. [main]
    static MRenderOptions Parse(int argc, const char* const* argv);
};
