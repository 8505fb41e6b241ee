// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/parameters/MParameterDirectory.h"

#include "core/MException.h"
#include "core/MFormat.h"

#include <algorithm>
#include <utility>

ParameterMainBase& MParameterDirectory::Add(std::unique_ptr<ParameterMainBase> parameter) {
    const std::uint32_t identifier = parameter->FirstIdentifier();
    const auto place = std::lower_bound(identifiers_.begin(), identifiers_.end(), identifier);
    if (place != identifiers_.end() && *place == identifier) {
        throw MException(MFormat("The parameter identifier {0} is taken.", identifier));
    }
    const auto index = place - identifiers_.begin();
    const auto added = parameters_.insert(parameters_.begin() + index, std::move(parameter));
    identifiers_.insert(place, identifier);
    return **added;
}

MParameterDirectory::Match MParameterDirectory::Find(std::uint32_t identifier) const noexcept {
    if (parameters_.empty()) return {};
    const auto above = std::upper_bound(identifiers_.begin(), identifiers_.end(), identifier);
    if (above == identifiers_.begin()) return {parameters_.front().get(), 0};
    const auto index = static_cast<std::size_t>(above - identifiers_.begin() - 1);
    return {parameters_[index].get(), identifier - identifiers_[index]};
}
