// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/parameters/MParameterDirectory.h"

#include <span>
#include <string>
#include <utility>
#include <vector>

/// Short names of an effect's panels, for the host's list: {"Tap 1", "T1"}.
using MPanelShortNames = std::span<const std::pair<const char*, const char*>>;

/// Gives a plug-in's records their identifiers, one after the other from 0. The order of the calls
/// is the order of the identifiers: projects rely on it, so it only ever grows at its end.
class MParameterTable {
public:
    /// `directory` is borrowed and gets the parameters. [setup]
    explicit MParameterTable(MParameterDirectory& directory) noexcept : directory_(directory) {}

    /// Adds one parameter. `id` is its key in the host's list, unique within 24 characters;
    /// `record` and `listener` are borrowed; `index` is what the listener hears. [setup]
    ParameterMainBase& Add(ParameterDefinition& record, std::string id, std::string name,
                           MParameterListener* listener = nullptr, int index = 0);

    /// Adds all records of an effect, in their order. Those that follow a panel are listed under
    /// it: "Band 1 - Tap 1 - Feedback" with the key "B1 T1 Feedback". `prefix` and `idPrefix` come
    /// first ("Band 1 - ", "B1 "); the panels' switches get the key of the panel and "On". The
    /// listener hears the record's number. [setup]
    void AddEffect(std::span<ParameterDefinition> records, const std::string& prefix,
                   const std::string& idPrefix, MPanelShortNames shortNames,
                   MParameterListener* listener);

private:
    MParameterDirectory& directory_;
};
