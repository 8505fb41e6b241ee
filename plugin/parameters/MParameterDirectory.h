// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/parameters/ParameterBase.h"

#include <cstdint>
#include <memory>
#include <vector>

/// The parameter objects of a plug-in by their identifiers. An object answers for the identifiers
/// from its first one up to the next object's first one; the first object answers for everything
/// below as well and the last one for everything above.
class MParameterDirectory {
public:
    /// The object that answers for an identifier; null in an empty directory.
    struct Match {
        ParameterMainBase* parameter = nullptr;
        std::uint32_t offset = 0;  ///< from the object's first identifier; 0 below the first object
    };

    /// Adds an object at its place by first identifier and returns it. Throws MException when
    /// another object has the same first identifier. [setup]
    ParameterMainBase& Add(std::unique_ptr<ParameterMainBase> parameter);

    /// [any]
    Match Find(std::uint32_t identifier) const noexcept;

    /// [any]
    int Count() const noexcept { return static_cast<int>(parameters_.size()); }
    /// The object at `index` of 0..Count() - 1, by ascending first identifier. [any]
    ParameterMainBase& At(int index) const noexcept {
        return *parameters_[static_cast<std::size_t>(index)];
    }

private:
    std::vector<std::unique_ptr<ParameterMainBase>> parameters_;
    // The objects' first identifiers: the search walks over these alone, which stay close together.
    std::vector<std::uint32_t> identifiers_;
};
