// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/MBlockProcessor.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The parameters of a processor by the names that a user may type. Case, and how many blanks or
/// which of ":./-" stand between words, do not matter.
///
/// A parameter answers to its key and to its long name, just as hosts show them. A setting of a
/// band's effect answers also to "Band 2" or "B2" and what it is called within the effect: the
/// record's key, its name, or its name behind that of the panel it stands under ("Tap 2 Delay"). A
/// panel "Synchronization 2" also goes by "Sync 2" and "Tap 2 Sync". Within the effect, keys go
/// before names and earlier records before later ones. Without a band, all bands are meant.
class MParameterList {
public:
    /// The parameters must outlive this. [main]
    explicit MParameterList(const MBlockProcessor& processor);

    int Count() const { return static_cast<int>(parameters_.size()); }
    int BandCount() const { return bandCount_; }
    const MRenderParameter& operator[](int index) const { return parameters_[index]; }
    const ParameterDefinition& Record(int index) const { return *parameters_[index].record; }

    /// The parameters that `name` means: one, or one of each band that sounds. Throws
    /// MRenderFailure (Usage) when there is none, with the nearest names, or when the band does not
    /// sound. [main]
    std::vector<int> Find(std::string_view name) const;

private:
    /// What a setting is called within its effect; the same for every band.
    struct Setting {
        std::string key;
        std::string name;                    // as shown
        std::string fullName;                // behind its panel's, as shown
        std::vector<std::string> longNames;  // simplified
    };
    struct BandName {
        int band = 0;  // 0 for none
        std::string rest;
    };

    static BandName SplitBand(const std::string& simple);
    void AddSetting(const ParameterDefinition& record);
    std::optional<int> FindHostName(const std::string& simple) const;
    std::optional<int> FindSetting(const std::string& simple) const;
    std::vector<int> OfBand(int band, int setting) const;
    void CheckBand(int band) const;
    [[noreturn]] void FailUnknown(std::string_view typed, const std::string& simple) const;
    std::vector<std::string> NearestNames(const std::string& simple) const;

    std::span<const MRenderParameter> parameters_;
    int bandCount_;
    std::vector<Setting> settings_;
    std::string panel_;                     // that the setting added next stands under
    std::vector<std::vector<int>> byBand_;  // [band - 1][setting]: indices of parameters
    std::vector<std::string> simpleKeys_;   // of every parameter
    std::vector<std::string> simpleNames_;
};
