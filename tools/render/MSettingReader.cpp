// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MSettingReader.h"

#include "core/MFormat.h"
#include "core/MText.h"
#include "plugin/values/MFormatReader.h"
#include "plugin/values/MValueVolume.h"
#include "tools/render/MRenderFailure.h"

#include <cmath>
#include <cstddef>

namespace {

std::string Quote(std::string_view text) { return MFormat("\"{0}\"", text); }

/// The full name of a note type for its usual abbreviations.
std::string TypeName(std::string_view typed) {
    std::string text = MText::ToLower(MText::Trim(typed));
    if (text.empty()) return "Straight";
    if (text == "d" || text == ".") return "Dotted";
    if (text == "t") return "Triplets";
    return text;
}

/// What the rounding of a typed limit may amount to, in the record's own units.
double Slack(const ParameterDefinition& record) { return 1e-9 * (record.maximum - record.minimum); }

/// Whether `text` means a value beyond the record's limits.
bool IsOutOfRange(const ParameterDefinition& record, const std::string& text) {
    if (!record.text && record.format.empty()) return false;
    const double slack = Slack(record);
    const auto value = record.text ? record.text->parse(text) : MReadByFormat(record.format, text);
    return value && !(*value >= record.minimum - slack && *value <= record.maximum + slack);
}

/// Whether the record is a linear gain that shows itself in percent and takes decibels as well.
bool IsMix(const ParameterDefinition& record) { return record.key.starts_with("DryWet"); }

/// The gain of a typed level, when it is one in decibels.
std::optional<double> ReadDecibels(const std::string& text) {
    const std::string lower = MText::ToLower(text);
    if (!lower.ends_with("db") && lower != "silence") return std::nullopt;
    const auto gain = MValueVolume::Parse(text);
    return gain && *gain <= 1 ? gain : std::nullopt;
}

/// The value that the typed text means for `record`.
std::optional<double> ReadValue(const ParameterDefinition& record, const std::string& text) {
    if (const auto gain = ReadDecibels(text); gain && IsMix(record)) return gain;
    if (IsOutOfRange(record, text)) return std::nullopt;
    return record.ParseDisplayText(text);
}

std::string Listed(const std::vector<std::string>& choices) {
    std::string text;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        if (i > 0) text += i + 1 == choices.size() ? " or " : ", ";
        text += Quote(choices[i]);
    }
    return text;
}

}  // namespace

std::vector<MRenderWrite> MSettingReader::Read(std::string_view setting) const {
    const std::size_t equals = setting.find('=');
    if (equals == std::string_view::npos) {
        FailUsage(Quote(setting) + " is no setting; write it as name=value");
    }
    const std::string text(MText::Trim(setting.substr(equals + 1)));
    return ReadText(list_.Find(setting.substr(0, equals)), text);
}

MRenderLane MSettingReader::ReadTimed(std::string_view setting) const {
    const auto number = MText::ReadLeadingNumber(setting);
    if (!number || number->value < 0) {
        FailUsage(Quote(setting) + " is no timed setting; write it as \"seconds name=value\"");
    }
    double seconds = number->value;
    std::string_view rest = number->rest;
    if (rest.starts_with("ms ")) {
        seconds *= 0.001;
        rest.remove_prefix(3);
    } else if (rest.starts_with("s ")) {
        rest.remove_prefix(2);
    }
    return {MTimeUnit::Seconds, false, {{seconds, Read(rest)}}};
}

std::vector<MRenderWrite> MSettingReader::ReadText(std::span<const int> parameters,
                                                   const std::string& text) const {
    std::vector<MRenderWrite> writes;
    for (const int index : parameters) AddText(index, text, writes);
    return writes;
}

std::vector<MRenderWrite> MSettingReader::ReadNumber(std::span<const int> parameters,
                                                     double number) const {
    std::vector<MRenderWrite> writes;
    for (const int index : parameters) {
        // The nearest value is the number itself, but for the rounding of a limit in decimals.
        const double nearest = list_.Record(index).Nearest(number);
        if (!(std::abs(nearest - number) <= Slack(list_.Record(index)))) {
            FailValue(index, MText::WriteNumber(number));
        }
        writes.push_back({index, nearest});
    }
    return writes;
}

std::vector<MRenderWrite> MSettingReader::ReadPosition(std::span<const int> parameters,
                                                       double position) const {
    if (!(position >= 0 && position <= 1)) {
        FailUsage("a normalised value is 0 to 1, not " + MText::WriteNumber(position));
    }
    std::vector<MRenderWrite> writes;
    for (const int index : parameters) {
        writes.push_back({index, list_.Record(index).FromNormalised(position)});
    }
    return writes;
}

void MSettingReader::AddText(int index, const std::string& text,
                             std::vector<MRenderWrite>& writes) const {
    const bool isSyncLength = index > 0 && IsSyncPanel(index - 1);
    const auto delayPanel = SyncPanelOfDelay(index);
    std::optional<std::vector<MRenderWrite>> note;
    if (IsSyncPanel(index)) note = ReadNote(index, text);
    if (isSyncLength) note = ReadNote(index - 1, text);
    // Without a fraction it is a time.
    const bool isFraction = text.find('/') != std::string::npos;
    if (delayPanel && isFraction) note = ReadNote(*delayPanel, text);
    if (note && isSyncLength) {
        note->erase(note->begin());
        // A bare length leaves the type alone.
        if (text.find_first_not_of("0123456789/ ") == std::string::npos) note->pop_back();
    }
    if (note) {
        writes.insert(writes.end(), note->begin(), note->end());
        return;
    }
    const ParameterDefinition& record = list_.Record(index);
    const auto value = ReadValue(record, text);
    if (!value || (delayPanel && isFraction)) FailValue(index, Quote(text));
    writes.push_back({index, *value});
}

/// Switch, length and type of the synchronisation whose panel stands at `panel`.
std::optional<std::vector<MRenderWrite>> MSettingReader::ReadNote(int panel,
                                                                  const std::string& text) const {
    const std::size_t end = text.find_first_not_of("0123456789/ ");
    const std::string lengthText = text.substr(0, end);
    const std::string typeText = end == std::string::npos ? "" : text.substr(end);
    // "0" and "1" switch the panel, they are no notes.
    const bool isSwitch = list_.Record(panel).ParseDisplayText(text).has_value();
    if (isSwitch || MText::Trim(lengthText).empty()) return std::nullopt;
    const auto length = list_.Record(panel + 1).ParseDisplayText(lengthText);
    const auto type = list_.Record(panel + 2).ParseDisplayText(TypeName(typeText));
    if (!length || !type) return std::nullopt;
    return std::vector<MRenderWrite>{{panel, 1}, {panel + 1, *length}, {panel + 2, *type}};
}

void MSettingReader::FailValue(int index, std::string_view value) const {
    FailUsage(
        MFormat("{0} does not take {1}; it takes {2}", list_[index].name, value, Accepted(index)));
}

/// The panel of the synchronisation that takes the place of the delay time at `index`.
std::optional<int> MSettingReader::SyncPanelOfDelay(int index) const {
    const auto isDelay = [&](int i) {
        return list_.Record(i).kind == ParameterKind::Float &&
               list_.Record(i).key.starts_with("delay");
    };
    if (!isDelay(index)) return std::nullopt;
    const int band = list_[index].band;
    int panelsToSkip = 0;  // taps come in the same order in both places
    for (int i = 0; i < index; ++i) panelsToSkip += list_[i].band == band && isDelay(i) ? 1 : 0;
    for (int i = index; i < list_.Count() && list_[i].band == band; ++i) {
        if (IsSyncPanel(i) && panelsToSkip-- == 0) return i;
    }
    return std::nullopt;
}

bool MSettingReader::IsSyncPanel(int index) const {
    const ParameterDefinition& record = list_.Record(index);
    return record.kind == ParameterKind::Group && record.key.starts_with("sync") &&
           index + 2 < list_.Count();
}

std::string MSettingReader::Accepted(int index) const {
    const ParameterDefinition& record = list_.Record(index);
    if (IsSyncPanel(index)) return "On, Off or a note such as 1/8, 1/8d (dotted) or 1/4t (triplet)";
    switch (record.kind) {
        case ParameterKind::Enum:
            return Listed(record.choices);
        case ParameterKind::Bool:
        case ParameterKind::Group:
            return "On or Off";
        case ParameterKind::Float:
        case ParameterKind::Int:
        case ParameterKind::Object:
            break;
    }
    return record.DisplayText(record.minimum) + " to " + record.DisplayText(record.maximum) +
           (SyncPanelOfDelay(index) ? ", or a note such as 1/8d" : "") +
           (IsMix(record) ? ", or decibels up to 0 dB" : "");
}
