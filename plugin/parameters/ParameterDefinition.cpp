// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/parameters/ParameterDefinition.h"

#include "core/MFormat.h"
#include "core/MRelaxed.h"
#include "core/MText.h"
#include "plugin/values/MChoiceReader.h"
#include "plugin/values/MFormatReader.h"
#include "plugin/values/MValueNumber.h"
#include "plugin/values/MValuePercents.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <utility>

namespace {

// What reading positions of whole numbers back loses at most, in units of the range.
constexpr double kPositionRounding = 1e-12;

double CurveToPosition(ParameterCurve curve, double part) {
    switch (curve) {
        case ParameterCurve::Sqr:
            return std::sqrt(part);
        case ParameterCurve::Power4:
            return std::sqrt(std::sqrt(part));
        case ParameterCurve::None:
            break;
    }
    return part;
}

double CurveFromPosition(ParameterCurve curve, double x) {
    switch (curve) {
        case ParameterCurve::Sqr:
            return x * x;
        case ParameterCurve::Power4:
            return (x * x) * (x * x);
        case ParameterCurve::None:
            break;
    }
    return x;
}

// Cuts the decimals off, but not those that are rounding: a position that was read from a whole
// number gives that number back.
double Truncate(double number, double range) {
    const double nearest = std::nearbyint(number);
    return std::fabs(number - nearest) <= kPositionRounding * range ? nearest : std::trunc(number);
}

// The choice out of 0..`last` that is nearest to `plain`; the first one for what is no number.
int NearestChoice(double plain, double last) {
    const double index = std::floor(plain + 0.5);
    return index >= 0 ? static_cast<int>(std::min(index, std::max(last, 0.0))) : 0;
}

std::optional<double> ReadSwitch(const std::string& typed) {
    const std::string_view text = MText::Trim(typed);
    for (const std::string_view name : {"on", "yes", "true", "1"}) {
        if (MText::EqualsIgnoringCase(text, name)) return 1.0;
    }
    for (const std::string_view name : {"off", "no", "false", "0"}) {
        if (MText::EqualsIgnoringCase(text, name)) return 0.0;
    }
    return std::nullopt;
}

}  // namespace

ParameterDefinition::ParameterDefinition() = default;
ParameterDefinition::~ParameterDefinition() = default;

void ParameterDefinition::Define(ParameterKind newKind, std::string newKey, std::string newName,
                                 double newMinimum, double newMaximum, double newDefault) {
    kind = newKind;
    key = std::move(newKey);
    name = std::move(newName);
    minimum = newMinimum;
    maximum = newMaximum;
    defaultValue = newDefault;
    value = newDefault;
    secondary = newDefault;
    previous = newDefault;
}

void ParameterDefinition::DefineFloat(std::string newKey, std::string newName, double newMinimum,
                                      double newMaximum, double newDefault,
                                      const ParameterText& newText, ParameterCurve newCurve) {
    Define(ParameterKind::Float, std::move(newKey), std::move(newName), newMinimum, newMaximum,
           newDefault);
    text = newText;
    curve = newCurve;
}

void ParameterDefinition::DefineFloat(std::string newKey, std::string newName, double newMinimum,
                                      double newMaximum, double newDefault, std::string newFormat,
                                      ParameterCurve newCurve) {
    Define(ParameterKind::Float, std::move(newKey), std::move(newName), newMinimum, newMaximum,
           newDefault);
    format = std::move(newFormat);
    curve = newCurve;
    const auto limits = MMakeValueLimits(minimum, maximum, defaultValue);
    if (format.empty()) {
        text = ParameterText{&MValuePercents::Format, &MValuePercents::Parse};
        scale = std::make_unique<MValuePercents>(value, limits);
    } else {
        scale = std::make_unique<MValueNumber<double>>(value, limits, format);
    }
}

void ParameterDefinition::DefineInt(std::string newKey, std::string newName, int newMinimum,
                                    int newMaximum, int newDefault) {
    Define(ParameterKind::Int, std::move(newKey), std::move(newName), newMinimum, newMaximum,
           newDefault);
}

void ParameterDefinition::DefineEnum(std::string newKey, std::string newName,
                                     std::vector<std::string> newChoices, int defaultIndex) {
    Define(ParameterKind::Enum, std::move(newKey), std::move(newName), 0,
           static_cast<double>(newChoices.size()) - 1, defaultIndex);
    choices = std::move(newChoices);
}

void ParameterDefinition::DefineBool(std::string newKey, std::string newName, bool defaultOn) {
    Define(ParameterKind::Bool, std::move(newKey), std::move(newName), 0, 1, defaultOn ? 1 : 0);
}

void ParameterDefinition::DefineGroup(std::string newKey, std::string newName, bool defaultOn) {
    Define(ParameterKind::Group, std::move(newKey), std::move(newName), 0, 1, defaultOn ? 1 : 0);
}

// What was written while redirected waits until the modulator makes it the own value.
double ParameterDefinition::Knob() const noexcept {
    const double last = MRelaxed::Load(written);
    return IsRedirected() && !std::isnan(last) ? last : Value();
}

void ParameterDefinition::SetKnob(double newValue) noexcept {
    if (IsRedirected()) {
        SetSecondary(newValue);
        // The modulator lets go before it looks a last time: one of the two finds the other's.
        std::atomic_ref(written).store(newValue, std::memory_order_seq_cst);
        if ((std::atomic_ref(flags).load(std::memory_order_seq_cst) & kRedirect) != 0) return;
    }
    SetValue(newValue);
}

bool ParameterDefinition::TakeKnob() noexcept {
    const double last = std::atomic_ref(written).load(std::memory_order_seq_cst);
    if (std::isnan(last)) return false;
    MRelaxed::Store(value, last);
    ForgetKnob(last);
    return true;
}

// What others have written since stays.
void ParameterDefinition::ForgetKnob(double modulated) noexcept {
    std::atomic_ref(written).compare_exchange_strong(modulated, kNothing);
}

void ParameterDefinition::Overrule(double newValue) noexcept {
    SetValue(newValue);
    // What a block still works with would be the old.
    if (IsRedirected()) SetSecondary(newValue);
}

void ParameterDefinition::Overrule(double newValue, double present) noexcept {
    if (!std::atomic_ref(value).compare_exchange_strong(present, newValue)) return;
    MRelaxed::Store(written, kNothing);
    if (IsRedirected()) SetSecondary(newValue);
}

void ParameterDefinition::SetValue(double newValue) noexcept {
    MRelaxed::Store(value, newValue);
    MRelaxed::Store(written, kNothing);
}

void ParameterDefinition::SetSecondary(double newValue) noexcept {
    MRelaxed::Store(secondary, newValue);
}

int ParameterDefinition::Index() const noexcept { return NearestChoice(Effective(), maximum); }

bool ParameterDefinition::IsOn() const noexcept { return Effective() >= 0.5; }

void ParameterDefinition::SetRedirect(bool on) noexcept {
    SetSecondary(Value());
    // Released after the secondary value, so that nobody who sees the flag reads an older one.
    if (on) {
        MRelaxed::Store(written, kNothing);
        std::atomic_ref(flags).fetch_or(kRedirect, std::memory_order_release);
    } else {
        std::atomic_ref(flags).fetch_and(static_cast<std::uint8_t>(~kRedirect),
                                         std::memory_order_seq_cst);
    }
}

bool ParameterDefinition::IsEnabled() const noexcept { return MRelaxed::Load(enabled); }

void ParameterDefinition::SetEnabled(bool on) noexcept { MRelaxed::Store(enabled, on); }

double ParameterDefinition::ToNormalised(double plain) const noexcept {
    switch (kind) {
        case ParameterKind::Bool:
        case ParameterKind::Group:
            return plain >= 0.5 ? 1 : 0;
        case ParameterKind::Object:
            return 0.5;
        case ParameterKind::Float:
        case ParameterKind::Int:
        case ParameterKind::Enum:
            break;
    }
    const double range = maximum - minimum;
    if (!(range > 0)) return 0;
    // Held within 0..1 for the root: a value may have been stored from outside its range.
    return CurveToPosition(curve, std::clamp((plain - minimum) / range, 0.0, 1.0));
}

double ParameterDefinition::FromNormalised(double x) const noexcept {
    const double range = maximum - minimum;
    switch (kind) {
        case ParameterKind::Int:
            return Truncate(minimum + range * x, range);
        case ParameterKind::Enum:
            // The choices share the range evenly: count * x - 0.5, rounded half up.
            return std::clamp(std::floor((range + 1) * x), 0.0, std::max(range, 0.0));
        case ParameterKind::Bool:
        case ParameterKind::Group:
            return x >= 0.5 ? 1 : 0;
        case ParameterKind::Object:
            return Value();
        case ParameterKind::Float:
            break;
    }
    return minimum + range * CurveFromPosition(curve, x);
}

std::string ParameterDefinition::DisplayText(double plain) const {
    if (text) return text->show(plain);
    switch (kind) {
        case ParameterKind::Bool:
        case ParameterKind::Group:
            return plain >= 0.5 ? "On" : "Off";
        case ParameterKind::Enum: {
            const auto index = static_cast<std::size_t>(NearestChoice(plain, maximum));
            return index < choices.size() ? choices[index] : std::string();
        }
        case ParameterKind::Object:
            return {};
        case ParameterKind::Float:
        case ParameterKind::Int:
            break;
    }
    if (format.empty()) return MText::WriteNumber(plain);
    const bool isWhole = kind == ParameterKind::Int && plain >= minimum && plain <= maximum;
    return isWhole ? MFormat(format, static_cast<std::int64_t>(plain)) : MFormat(format, plain);
}

std::optional<double> ParameterDefinition::ReadText(const std::string& typed) const {
    if (text) return text->parse(typed);
    switch (kind) {
        case ParameterKind::Bool:
        case ParameterKind::Group:
            return ReadSwitch(typed);
        case ParameterKind::Enum:
            return MReadChoice(choices, typed);
        case ParameterKind::Int: {
            const std::optional<double> number = MReadByFormat(format, typed);
            return number ? std::optional(std::trunc(*number)) : std::nullopt;
        }
        case ParameterKind::Object:
            return std::nullopt;
        case ParameterKind::Float:
            break;
    }
    return MReadByFormat(format, typed);
}

std::optional<double> ParameterDefinition::ParseDisplayText(const std::string& typed) const {
    const std::optional<double> plain = ReadText(typed);
    if (!plain || std::isnan(*plain)) return std::nullopt;
    return std::clamp(*plain, minimum, maximum);
}
