// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/modulation/MLFOSettings.h"
#include "tools/render/MSettingReader.h"

#include <string>
#include <string_view>
#include <vector>

/// Reads what the user types to let a modulator move parameters:
///
///     sine 0.5 Hz -> Band limit 1: 200 Hz .. 800 Hz; Feedback: +-20%
///
/// Before the arrow stands a source with its options, behind it what it moves: from one value to
/// another, both as the parameter shows them, or to either side of the knob, or only up ("+20%") or
/// down ("-20%"), in percent of the parameter's whole way. A plain name means every band, as in a
/// setting.
class MModulationReader {
public:
    /// The reader must outlive this. [main]
    explicit MModulationReader(const MSettingReader& reader) : reader_(reader) {}

    /// Adds the modulator that `text` means to `settings`, a modulator of which one is asked for,
    /// and turns it on. Throws MRenderFailure (Usage), saying what would be understood. [main]
    void Read(std::string_view text, MLFOSettings& settings) const;

private:
    void ReadTarget(std::string_view text, std::vector<MModulationTarget>& targets) const;
    MTargetMotion ReadRange(int parameter, std::string_view from, std::string_view to) const;
    double ReadPosition(int parameter, std::string_view text) const;

    const MSettingReader& reader_;
};
