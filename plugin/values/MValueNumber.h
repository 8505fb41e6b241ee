// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MRelaxed.h"
#include "plugin/values/MValue.h"

#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>

/// Where a numeric scale may go and how fast, in the units of its value.
template <class T>
struct MValueLimits {
    T minimum;
    T maximum;
    T step;         ///< of one keyboard or wheel increment
    T largestStep;  ///< of any increment
    T defaultValue;
};

/// Limits with steps that suit the range: a thousandth of it and a tenth, at least 1 for integers.
template <class T>
MValueLimits<T> MMakeValueLimits(T minimum, T maximum, T defaultValue) {
    const double range = static_cast<double>(maximum) - static_cast<double>(minimum);
    const double smallest = std::is_integral_v<T> ? 1 : 0;
    // Through double, whose half range fits every type even where the full range does not.
    const auto part = [&](double fraction) {
        const double size = range * fraction;
        return static_cast<T>(size > smallest ? size : smallest);
    };
    return {minimum, maximum, part(0.001), part(0.1), defaultValue};
}

/// A number as a scale. Shows the value by a display format of the formatting language, or plainly
/// without one; the scales derived from it put their own rule in the place of either.
template <class T>
class MValueNumber : public MValue {
public:
    using Number = T;

    /// Describes `value`, which outlives the scale and is not changed here. [setup]
    MValueNumber(T& value, const MValueLimits<T>& limits, std::string format = {});

    /// The plain number: shortest decimal text that reads back to the same value. [any]
    static std::string Format(T value);
    /// Reads a plain number of the type's range; integers may not have decimals. [any]
    static std::optional<T> Parse(const std::string& text);

    T Value() const noexcept { return MRelaxed::Load(value_); }
    const MValueLimits<T>& Limits() const noexcept { return limits_; }
    /// Whether an operation of this scale has changed the value since the flag was last taken back.
    bool IsChanged() const noexcept { return changed_; }
    void ResetChanged() noexcept { changed_ = false; }

    std::string ToString() const override;
    bool FromString(const std::string& text) override;
    bool SetDefault() override;
    bool Assign(const MValue& other) override;
    std::string TypeName() const override;
    std::string GetDisplayText() const override;
    std::string GetDisplayTextFrom01(double x) const override;
    bool ParseDisplayText(const std::string& text) override;
    void Validate() override;
    void IncrementPower(int power, bool up) override;
    void Increment(int count) override;
    double GetNormalised() const override;
    void SetNormalised(double x) override;

protected:
    /// What the user sees for `value`.
    virtual std::string Show(T value) const;
    /// The value that the typed text means; empty when it means none.
    virtual std::optional<T> Read(const std::string& text) const;
    /// The position 0..1 of `value` and the value at a position.
    virtual double PositionOf(T value) const;
    virtual T ValueAt(double x) const;
    /// The value after a move by `steps` steps, limits not regarded.
    virtual T Moved(double steps) const;

    /// The value after a move by `steps` thousandths of the range of positions: for scales that are
    /// even to the ear rather than in the value.
    T MovedByPosition(double steps) const;
    T Clamp(T value) const;

private:
    // Stores `value` unless it is no number; returns whether that changed what was there.
    bool Store(T value);

    T& value_;
    const MValueLimits<T> limits_;
    const std::string format_;
    bool changed_ = false;
};

extern template class MValueNumber<double>;
extern template class MValueNumber<float>;
extern template class MValueNumber<std::int16_t>;
extern template class MValueNumber<std::int32_t>;
extern template class MValueNumber<std::int64_t>;

/// A numeric scale with a rule of its own: `Scale` derives from it and has static `Format`, `Parse`
/// and `kTypeName`, which everything else that shows the same kind of value uses as well.
template <class Scale, class Base = MValueNumber<double>>
class MValueRule : public Base {
public:
    using Number = typename Base::Number;

    MValueRule(Number& value, const MValueLimits<Number>& limits) : Base(value, limits) {}

    std::string TypeName() const override { return Scale::kTypeName; }

protected:
    std::string Show(Number value) const override { return Scale::Format(value); }
    std::optional<Number> Read(const std::string& text) const override {
        return Scale::Parse(text);
    }
};
