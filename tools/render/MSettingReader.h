// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/MParameterList.h"
#include "tools/render/MRenderLane.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Reads what the user types to set parameters: "name=text", the text as the parameter shows
/// itself. A value beyond the parameter's range is refused rather than moved to the nearest limit:
/// a script should hear that it did not get what it asked for.
///
/// A synchronisation panel takes a whole note as well, such as "1/8", "1/8 dotted", "1/8d" or
/// "1/4t", and then sets its switch, length and type; its length takes the note's type along in the
/// same way, and so does the delay of the panel's tap, which a note puts in sync. Wet and dry take
/// decibels besides their percent.
class MSettingReader {
public:
    /// The list must outlive this. [main]
    explicit MSettingReader(const MParameterList& list) : list_(list) {}

    const MParameterList& List() const { return list_; }

    /// What "name=text" sets. Throws MRenderFailure (Usage) for an unknown name or a text that does
    /// not parse, saying what would. [main]
    std::vector<MRenderWrite> Read(std::string_view setting) const;
    /// The same for a text with a time before it: seconds, or "ms" or "s" behind the number. [main]
    MRenderLane ReadTimed(std::string_view setting) const;

    /// What `text` sets when typed for each of `parameters`. Throws MRenderFailure (Usage). [main]
    std::vector<MRenderWrite> ReadText(std::span<const int> parameters,
                                       const std::string& text) const;
    /// Sets `parameters` to `number` in their records' own units. Throws MRenderFailure (Usage)
    /// when that is out of their range, or between the values of a whole number or choice. [main]
    std::vector<MRenderWrite> ReadNumber(std::span<const int> parameters, double number) const;
    /// Sets `parameters` to `position`, 0..1. Throws MRenderFailure (Usage) for any other. [main]
    std::vector<MRenderWrite> ReadPosition(std::span<const int> parameters, double position) const;

private:
    void AddText(int index, const std::string& text, std::vector<MRenderWrite>& writes) const;
    std::optional<std::vector<MRenderWrite>> ReadNote(int panel, const std::string& text) const;
    [[noreturn]] void FailValue(int index, std::string_view value) const;
    std::string Accepted(int index) const;
    bool IsSyncPanel(int index) const;
    std::optional<int> SyncPanelOfDelay(int index) const;

    const MParameterList& list_;
};
