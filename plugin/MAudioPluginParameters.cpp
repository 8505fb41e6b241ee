// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MGuard.h"
#include "plugin/MAudioPlugin.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

// Every operation has one shape: find the object, ask it, answer `neutral` where there is none or
// where it fails.
template <class Result, class Ask>
Result AskParameter(const char* operation, const MParameterDirectory& parameters,
                    std::uint32_t identifier, Result neutral, Ask&& ask) noexcept {
    return Guard<MExceptionPolicy::Swallow>(operation, neutral, [&]() -> Result {
        const auto [parameter, offset] = parameters.Find(identifier);
        if (parameter == nullptr) return neutral;
        return std::forward<Ask>(ask)(*parameter, offset);
    });
}

}  // namespace

void MAudioPlugin::SetParameter(std::uint32_t identifier, double x, bool silent) {
    Guard<MExceptionPolicy::Swallow>("MAudioPlugin::SetParameter", [&] {
        const auto [parameter, offset] = parameters_.Find(identifier);
        if (parameter == nullptr || std::isnan(x)) return;
        parameter->SetNormalised(offset, std::clamp(x, 0.0, 1.0), silent);
    });
}

double MAudioPlugin::GetParameter(std::uint32_t identifier) {
    return AskParameter("MAudioPlugin::GetParameter", parameters_, identifier, 0.0,
                        [](ParameterMainBase& p, std::uint32_t offset) {
                            const ParameterDefinition* const record = p.Record();
                            return record != nullptr ? record->ToNormalised(record->Knob())
                                                     : p.GetNormalised(offset);
                        });
}

std::string MAudioPlugin::GetParameterName(std::uint32_t identifier) {
    return AskParameter("MAudioPlugin::GetParameterName", parameters_, identifier, std::string(),
                        [](const ParameterMainBase& p, std::uint32_t) { return p.GetName(); });
}

std::string MAudioPlugin::GetParameterID(std::uint32_t identifier) {
    return AskParameter("MAudioPlugin::GetParameterID", parameters_, identifier, std::string(),
                        [](const ParameterMainBase& p, std::uint32_t) { return p.GetID(); });
}

std::string MAudioPlugin::GetParameterValueName(std::uint32_t identifier) {
    return AskParameter("MAudioPlugin::GetParameterValueName", parameters_, identifier,
                        std::string(), [](ParameterMainBase& p, std::uint32_t offset) {
                            const ParameterDefinition* const record = p.Record();
                            return record != nullptr ? record->DisplayText(record->Knob())
                                                     : p.GetValueName(offset);
                        });
}

std::string MAudioPlugin::GetParameterValueNameFrom01(std::uint32_t identifier, double x) {
    return AskParameter("MAudioPlugin::GetParameterValueNameFrom01", parameters_, identifier,
                        std::string(), [&](const ParameterMainBase& p, std::uint32_t offset) {
                            if (std::isnan(x)) return std::string();
                            return p.GetValueNameFrom01(offset, std::clamp(x, 0.0, 1.0));
                        });
}

double MAudioPlugin::ParseParameterValueName(std::uint32_t identifier, const std::string& text) {
    return AskParameter(
        "MAudioPlugin::ParseParameterValueName", parameters_, identifier, 0.0,
        [&](ParameterMainBase& p, std::uint32_t offset) { return p.ParseValueName(offset, text); });
}

std::string MAudioPlugin::GetParameterUnitsName(std::uint32_t identifier) {
    return AskParameter("MAudioPlugin::GetParameterUnitsName", parameters_, identifier,
                        std::string(),
                        [](const ParameterMainBase& p, std::uint32_t) { return p.GetUnitsName(); });
}

std::int32_t MAudioPlugin::GetParameterType(std::uint32_t identifier) {
    return AskParameter("MAudioPlugin::GetParameterType", parameters_, identifier, 0,
                        [](const ParameterMainBase& p, std::uint32_t) {
                            return static_cast<std::int32_t>(p.Kind());
                        });
}

double MAudioPlugin::GetParameterDefaultValue(std::uint32_t identifier) {
    return AskParameter(
        "MAudioPlugin::GetParameterDefaultValue", parameters_, identifier, 0.0,
        [](const ParameterMainBase& p, std::uint32_t) { return p.GetDefaultNormalised(); });
}
