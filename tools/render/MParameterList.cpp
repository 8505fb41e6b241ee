// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MParameterList.h"

#include "core/MFormat.h"
#include "core/MText.h"
#include "tools/render/MEditDistance.h"
#include "tools/render/MRenderFailure.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::string_view kSyncPanel = "synchronization ";
constexpr std::size_t kSuggestions = 3;

/// Lower case, with one blank wherever blanks or separators stand between words.
std::string Simplify(std::string_view name) {
    std::string simple;
    for (const char letter : MText::ToLower(name)) {
        if (std::string_view(" \t:./-").find(letter) == std::string_view::npos) {
            simple += letter;
        } else if (!simple.empty() && simple.back() != ' ') {
            simple += ' ';
        }
    }
    if (simple.ends_with(' ')) simple.pop_back();
    return simple;
}

/// What else a setting goes by whose simplified full name is `fullName`.
std::vector<std::string> LongNames(const std::string& fullName) {
    std::vector<std::string> names = {fullName};
    if (!fullName.starts_with(kSyncPanel)) return names;
    const std::string rest = fullName.substr(kSyncPanel.size());  // "2" or "2 length"
    const std::size_t blank = rest.find(' ');
    const std::string tap = "tap " + rest.substr(0, blank);
    const std::string record = blank == std::string::npos ? "" : rest.substr(blank);
    names.push_back("sync " + rest);
    names.push_back(tap + " sync" + record);
    names.push_back(record.empty() ? "sync" : tap + record);
    return names;
}

template <class Range>
std::optional<int> IndexOf(const Range& range, const std::string& wanted) {
    const auto found = std::find(range.begin(), range.end(), wanted);
    if (found == range.end()) return std::nullopt;
    return static_cast<int>(found - range.begin());
}

}  // namespace

MParameterList::MParameterList(const MBlockProcessor& processor)
    : parameters_(processor.Parameters()), bandCount_(processor.BandCount()) {
    for (int i = 0; i < Count(); ++i) {
        const MRenderParameter& parameter = parameters_[i];
        simpleKeys_.push_back(Simplify(parameter.key));
        simpleNames_.push_back(Simplify(parameter.name));
        if (!parameter.isOfEffect) continue;
        byBand_.resize(std::max<std::size_t>(byBand_.size(), parameter.band));
        byBand_[parameter.band - 1].push_back(i);
        if (parameter.band == 1) AddSetting(*parameter.record);
    }
}

void MParameterList::AddSetting(const ParameterDefinition& record) {
    const bool isPanel = record.kind == ParameterKind::Group;
    if (isPanel) panel_ = record.name;
    Setting setting = {record.key, record.name, record.name, {}};
    if (!isPanel && !panel_.empty()) setting.fullName = panel_ + " " + record.name;
    setting.longNames = LongNames(Simplify(setting.fullName));
    settings_.push_back(std::move(setting));
}

std::vector<int> MParameterList::Find(std::string_view name) const {
    const std::string simple = Simplify(MText::Trim(name));
    if (const auto index = FindHostName(simple)) {
        CheckBand(parameters_[*index].band);
        return {*index};
    }
    const auto [band, rest] = SplitBand(simple);
    const auto setting = FindSetting(rest);
    if (band == 0) {
        if (!setting) FailUnknown(name, simple);
        return OfBand(0, *setting);
    }
    // "Band 2 Gain": the band's own gain is "Band gain 2".
    const std::string own = MFormat("band {0} {1}", rest, band);
    const auto ownIndex = FindHostName(own);
    if (!setting && !ownIndex) FailUnknown(name, simple);
    CheckBand(band);
    if (!setting) return {*ownIndex};
    if (ownIndex) {
        FailUsage(MFormat("\"{0}\" may be \"{1}\" or \"Band {2} {3}\"; say which",
                          MText::Trim(name), parameters_[*ownIndex].name, band,
                          settings_[*setting].fullName));
    }
    return OfBand(band, *setting);
}

std::optional<int> MParameterList::FindHostName(const std::string& simple) const {
    const auto byKey = IndexOf(simpleKeys_, simple);
    return byKey ? byKey : IndexOf(simpleNames_, simple);
}

std::optional<int> MParameterList::FindSetting(const std::string& simple) const {
    const auto find = [&](auto&& matches) -> std::optional<int> {
        const auto found = std::find_if(settings_.begin(), settings_.end(), matches);
        if (found == settings_.end()) return std::nullopt;
        return static_cast<int>(found - settings_.begin());
    };
    if (const auto byKey = find([&](const Setting& setting) {
            return MText::EqualsIgnoringCase(setting.key, simple);
        })) {
        return byKey;
    }
    if (const auto byName =
            find([&](const Setting& setting) { return Simplify(setting.name) == simple; })) {
        return byName;
    }
    return find(
        [&](const Setting& setting) { return IndexOf(setting.longNames, simple).has_value(); });
}

/// "band 2 delay" or "b2 delay" as 2 and "delay"; any other name is all rest.
MParameterList::BandName MParameterList::SplitBand(const std::string& simple) {
    const std::size_t start = simple.starts_with("band ") ? 5 : simple.starts_with('b') ? 1 : 0;
    const bool hasNumber = start > 0 && simple.size() > start + 1 && simple[start] >= '1' &&
                           simple[start] <= '9' && simple[start + 1] == ' ';
    if (!hasNumber) return {0, simple};
    return {simple[start] - '0', simple.substr(start + 2)};
}

std::vector<int> MParameterList::OfBand(int band, int setting) const {
    if (band > 0) return {byBand_[band - 1][setting]};
    std::vector<int> indices(static_cast<std::size_t>(bandCount_));
    for (int i = 0; i < bandCount_; ++i) indices[i] = byBand_[i][setting];
    return indices;
}

void MParameterList::CheckBand(int band) const {
    if (band <= bandCount_) return;
    FailUsage(MFormat("there is no band {0}: --bands is {1}", band, bandCount_));
}

void MParameterList::FailUnknown(std::string_view typed, const std::string& simple) const {
    std::string text = MFormat("unknown parameter \"{0}\"", MText::Trim(typed));
    std::string separator = "; the nearest are ";
    for (const std::string& nearest : NearestNames(simple)) {
        text += separator + nearest;
        separator = ", ";
    }
    FailUsage(text + " (--list-parameters shows all)");
}

std::vector<std::string> MParameterList::NearestNames(const std::string& simple) const {
    const auto [band, rest] = SplitBand(simple);
    const std::string prefix = band == 0 ? "" : MFormat("Band {0} ", band);
    std::vector<std::pair<int, std::string>> ranked;  // distance, name: each setting's nearest one
    const auto rank = [&](const std::string& typed, const std::vector<std::string>& names) {
        std::pair<int, std::string> best;
        for (const std::string& name : names) {
            const int distance = MEditDistance(typed, Simplify(name));
            if (best.second.empty() || distance < best.first) best = {distance, name};
        }
        return best;
    };
    for (const Setting& setting : settings_) {
        auto best = rank(rest, {setting.name, setting.fullName, setting.key});
        best.second = prefix + best.second;
        const bool isNew = std::none_of(ranked.begin(), ranked.end(), [&](const auto& entry) {
            return MText::EqualsIgnoringCase(entry.second, best.second);
        });
        if (isNew) ranked.push_back(best);
    }
    for (const MRenderParameter& parameter : parameters_) {
        if (!parameter.isOfEffect) ranked.push_back(rank(simple, {parameter.name, parameter.key}));
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    std::vector<std::string> names;
    for (const auto& [distance, candidate] : ranked) {
        if (names.size() < kSuggestions) names.push_back(candidate);
    }
    return names;
}
