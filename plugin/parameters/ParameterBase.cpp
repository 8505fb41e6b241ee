// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/parameters/ParameterBase.h"

#include "core/MText.h"
#include "plugin/values/MValue.h"

#include <algorithm>
#include <utility>

namespace {
constexpr double kNoPosition = 0.5;  // of whatever is no number
}

ParameterMainBase::ParameterMainBase(ParameterIdentity identity) : identity_(std::move(identity)) {}

ParameterMainBase::~ParameterMainBase() = default;

void ParameterMainBase::Reserved1() {}

void ParameterMainBase::SetNormalised(std::uint32_t /*offset*/, double /*x*/, bool /*silent*/) {}

bool ParameterMainBase::LoadScale(MXMLNode node) {
    const ParameterDefinition* record = Record();
    return record != nullptr && record->scale != nullptr && record->scale->Load(node);
}

double ParameterMainBase::GetNormalised(std::uint32_t /*offset*/) const { return kNoPosition; }

std::string ParameterMainBase::GetName() const { return identity_.name; }

std::string ParameterMainBase::GetLongName() const { return GetName(); }

std::string ParameterMainBase::GetID() const { return identity_.id; }

std::string ParameterMainBase::GetValueName(std::uint32_t /*offset*/) const { return {}; }

std::string ParameterMainBase::GetValueNameFrom01(std::uint32_t /*offset*/, double /*x*/) const {
    return {};
}

double ParameterMainBase::ParseValueName(std::uint32_t offset, const std::string& text) {
    const std::optional<double> number = MText::ReadNumber(text);
    return number ? std::clamp(*number, 0.0, 1.0) : GetNormalised(offset);
}

std::string ParameterMainBase::GetUnitsName() const { return {}; }

bool ParameterMainBase::HasOption13() const noexcept { return false; }

void ParameterMainBase::SetRedirect(std::uint32_t /*offset*/, bool /*on*/) {}

void ParameterMainBase::Reserved15() {}

double ParameterMainBase::GetDefaultNormalised() const { return kNoPosition; }

MParameterOwner* ParameterMainBase::Owner() const noexcept { return identity_.owner; }

bool ParameterMainBase::HasOption19() const noexcept { return false; }

void ParameterMainBase::SetPlainValue(double /*value*/) {}

void ParameterMainBase::SetListener(MParameterListener* listener, int index) noexcept {
    listener_ = listener;
    listenerIndex_ = index;
}

void ParameterMainBase::TellChange(std::uint32_t offset, double oldValue, double newValue,
                                   bool refresh) noexcept {
    if (listener_ != nullptr) {
        listener_->ParameterChanged(listenerIndex_, offset, oldValue, newValue);
        if (refresh) listener_->RequestRefresh();
    }
    if (isQueued_ && identity_.owner != nullptr) identity_.owner->PostChange(*this);
}

void* ParameterBaseCustom::CreateEditor() { return nullptr; }

double ParameterSpecialMainBase::ParseValueName(std::uint32_t offset, const std::string& /*text*/) {
    return GetNormalised(offset);
}

void* ParameterSpecialBaseCustom::CreateEditor() { return nullptr; }
