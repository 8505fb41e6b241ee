// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValueNumber.h"

#include "core/MFormat.h"
#include "core/MText.h"
#include "plugin/values/MFormatReader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

namespace {

// A number in double as a value of T; empty when T cannot hold it. The upper bound of 64-bit
// integers is no double: one above it is, hence the strict comparison for integers.
template <class T>
std::optional<T> Narrow(double number) {
    if (!std::isfinite(number)) return std::nullopt;
    if constexpr (std::is_integral_v<T>) {
        const double end = std::ldexp(1.0, std::numeric_limits<T>::digits);
        if (number < -end || number >= end || std::trunc(number) != number) return std::nullopt;
    } else if (std::fabs(number) > static_cast<double>(std::numeric_limits<T>::max())) {
        return std::nullopt;
    }
    return static_cast<T>(number);
}

// The same without failure: the nearest value that T has.
template <class T>
T Nearest(double number) {
    if constexpr (std::is_integral_v<T>) {
        const double rounded = std::floor(number + 0.5);
        const double end = std::ldexp(1.0, std::numeric_limits<T>::digits);
        if (!(rounded > -end)) return std::numeric_limits<T>::min();
        if (rounded >= end) return std::numeric_limits<T>::max();
        return static_cast<T>(rounded);
    } else {
        return static_cast<T>(number);
    }
}

template <class T>
constexpr const char* kTypeName = "MValueNumber";
template <>
constexpr const char* kTypeName<float> = "MValueNumberFloat";
template <>
constexpr const char* kTypeName<std::int16_t> = "MValueNumberInt16";
template <>
constexpr const char* kTypeName<std::int32_t> = "MValueNumberInt32";
template <>
constexpr const char* kTypeName<std::int64_t> = "MValueNumberInt64";

}  // namespace

template <class T>
MValueNumber<T>::MValueNumber(T& value, const MValueLimits<T>& limits, std::string format)
    : value_(value), limits_(limits), format_(std::move(format)) {}

template <class T>
std::string MValueNumber<T>::Format(T value) {
    if constexpr (std::is_same_v<T, double>) {
        return MText::WriteNumber(value);
    } else {
        char buffer[64];
        return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
    }
}

template <class T>
std::optional<T> MValueNumber<T>::Parse(const std::string& text) {
    if constexpr (std::is_integral_v<T>) {
        // Exact beyond the 53 bits of a double; whatever else means a whole number is read below.
        const std::string_view digits = MText::Trim(text);
        const char* const last = digits.data() + digits.size();
        T value{};
        const auto [end, error] = std::from_chars(digits.data(), last, value);
        if (error == std::errc() && end == last) return value;
    }
    const std::optional<double> number = MText::ReadNumber(text);
    return number ? Narrow<T>(*number) : std::nullopt;
}

template <class T>
std::string MValueNumber<T>::ToString() const {
    if constexpr (std::is_integral_v<T>) {
        return Format(Value());
    } else {
        return MFormat("{0.6}", static_cast<double>(Value()));
    }
}

template <class T>
bool MValueNumber<T>::FromString(const std::string& text) {
    const std::optional<T> value = Parse(text);
    if (value) Store(*value);
    return value.has_value();
}

template <class T>
bool MValueNumber<T>::SetDefault() {
    return Store(limits_.defaultValue);
}

template <class T>
bool MValueNumber<T>::Assign(const MValue& other) {
    if (const auto* same = dynamic_cast<const MValueNumber*>(&other);
        same != nullptr && same->TypeName() == TypeName()) {
        return Store(same->Value());  // the value itself, free of the rounding of positions
    }
    return Store(ValueAt(other.GetNormalised()));
}

template <class T>
std::string MValueNumber<T>::TypeName() const {
    return kTypeName<T>;
}

template <class T>
std::string MValueNumber<T>::GetDisplayText() const {
    return Show(Value());
}

template <class T>
std::string MValueNumber<T>::GetDisplayTextFrom01(double x) const {
    return Show(ValueAt(x));
}

template <class T>
bool MValueNumber<T>::ParseDisplayText(const std::string& text) {
    const std::optional<T> value = Read(text);
    return value && Store(Clamp(*value));
}

template <class T>
void MValueNumber<T>::Validate() {
    Store(Clamp(Value()));
}

template <class T>
void MValueNumber<T>::IncrementPower(int power, bool up) {
    const auto step = static_cast<double>(limits_.step);
    const double most = step > 0 ? static_cast<double>(limits_.largestStep) / step : 0;
    const double steps = std::min(std::ldexp(1.0, power), most);
    Store(Clamp(Moved(up ? steps : -steps)));
}

template <class T>
void MValueNumber<T>::Increment(int count) {
    Store(Clamp(Moved(count)));
}

template <class T>
double MValueNumber<T>::GetNormalised() const {
    return PositionOf(Value());
}

template <class T>
void MValueNumber<T>::SetNormalised(double x) {
    Store(ValueAt(x));
}

template <class T>
std::string MValueNumber<T>::Show(T value) const {
    return format_.empty() ? Format(value) : MFormat(format_, value);
}

template <class T>
std::optional<T> MValueNumber<T>::Read(const std::string& text) const {
    if (format_.empty()) return Parse(text);
    const std::optional<double> number = MReadByFormat(format_, text);
    return number ? Narrow<T>(*number) : std::nullopt;
}

template <class T>
double MValueNumber<T>::PositionOf(T value) const {
    const auto minimum = static_cast<double>(limits_.minimum);
    const auto maximum = static_cast<double>(limits_.maximum);
    if (maximum == minimum) return 0;
    return std::clamp((static_cast<double>(value) - minimum) / (maximum - minimum), 0.0, 1.0);
}

template <class T>
T MValueNumber<T>::ValueAt(double x) const {
    const auto minimum = static_cast<double>(limits_.minimum);
    const auto maximum = static_cast<double>(limits_.maximum);
    return Nearest<T>(minimum + (maximum - minimum) * x);
}

template <class T>
T MValueNumber<T>::Moved(double steps) const {
    return Nearest<T>(static_cast<double>(Value()) + steps * static_cast<double>(limits_.step));
}

template <class T>
T MValueNumber<T>::MovedByPosition(double steps) const {
    constexpr double kPositionStep = 0.001;
    return ValueAt(std::clamp(PositionOf(Value()) + steps * kPositionStep, 0.0, 1.0));
}

template <class T>
T MValueNumber<T>::Clamp(T value) const {
    return std::clamp(value, limits_.minimum, limits_.maximum);
}

template <class T>
bool MValueNumber<T>::Store(T value) {
    if constexpr (std::is_floating_point_v<T>) {
        if (!std::isfinite(value)) return false;
    }
    const bool isChange = Value() != value;
    if (isChange) MRelaxed::Store(value_, value);
    changed_ = changed_ || isChange;
    return isChange;
}

template class MValueNumber<double>;
template class MValueNumber<float>;
template class MValueNumber<std::int16_t>;
template class MValueNumber<std::int32_t>;
template class MValueNumber<std::int64_t>;
