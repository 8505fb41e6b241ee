// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MRelaxed.h"

#include <atomic>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class MValue;

/// What a record holds. The numbers are what `GetParameterType` answers.
enum class ParameterKind : std::int32_t {
    Float = 1,
    Int = 2,
    Enum = 3,
    Bool = 4,
    Group = 5,
    Object = 6
};

/// How a floating record's value is spread over the normalised range.
enum class ParameterCurve : std::int32_t { None = 0, Sqr = 1, Power4 = 2 };

/// How a record's value is written for the user and read back. Both functions work on the record's
/// own units and never depend on the locale.
struct ParameterText {
    /// The text that the user sees for `value`.
    std::string (*show)(double value);
    /// The value that the typed `text` means; empty when it means none.
    std::optional<double> (*parse)(const std::string& text);
};

/// One setting: everything there is to know about it and its value.
///
/// All kinds keep their value as a double: every 32-bit integer, index and switch is exact in it,
/// so that one aligned store serves every kind. Whatever describes the record is laid down before
/// the record is first used and stays; only the values, the redirect flag and `Enabled` change
/// later, each as one aligned store that any thread may make: a reader sees the old or the new,
/// never a mixture.
struct ParameterDefinition {
    // Bits of `flags`.
    static constexpr std::uint8_t kOption13 = 1 << 3;        ///< reported by slot 13 of the object
    static constexpr std::uint8_t kRedirect = 1 << 4;        ///< writes go to `secondary`
    static constexpr std::uint8_t kUpdateRequired = 1 << 5;  ///< a change asks for an update
    static constexpr std::uint8_t kOption19 = 1 << 6;        ///< reported by slot 19 of the object

    /// In `written`: nothing.
    static constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();

    // What every block reads comes first, in one line of the cache.
    alignas(64) std::uint8_t flags = 0;
    bool enabled = true;  ///< whether the user may change it at present
    ParameterKind kind = ParameterKind::Float;
    ParameterCurve curve = ParameterCurve::None;
    double minimum = 0;
    double maximum = 1;
    double value = 0;      ///< in the record's own units; an index, or 0 and 1, for the other kinds
    double secondary = 0;  ///< the modulated value, in force while redirected
    double previous = 0;   ///< where the last ramp ended
    double written = kNothing;  ///< by SetKnob, while redirected, until TakeKnob
    double defaultValue = 0;
    std::string key;        ///< attribute name in the state; never changes between versions
    std::string name;       ///< shown to the user
    std::string shortName;  ///< empty so far
    std::string unitsName;  ///< empty so far: display texts bring their unit along
    std::string help;       ///< what the user reads about it, in the editor's markup
    std::optional<ParameterText> text;
    std::string format;                ///< of the formatting language, used when there is no `text`
    std::vector<std::string> choices;  ///< of an enumerated record
    std::unique_ptr<MValue> scale;     ///< bound to `value`; made by the definer, may be absent

    ParameterDefinition();
    ~ParameterDefinition();
    ParameterDefinition(const ParameterDefinition&) = delete;
    ParameterDefinition& operator=(const ParameterDefinition&) = delete;

    /// Lays down a floating record that shows itself by `text`. [setup]
    void DefineFloat(std::string key, std::string name, double minimum, double maximum,
                     double defaultValue, const ParameterText& text,
                     ParameterCurve curve = ParameterCurve::None);
    /// Lays down a floating record that shows itself by the display format; an empty format stands
    /// for the percent rule of 100 times the value. [setup]
    void DefineFloat(std::string key, std::string name, double minimum, double maximum,
                     double defaultValue, std::string format,
                     ParameterCurve curve = ParameterCurve::None);
    /// Lays down a whole number from `minimum` to `maximum`. [setup]
    void DefineInt(std::string key, std::string name, int minimum, int maximum, int defaultValue);
    /// Lays down a choice out of a list. [setup]
    void DefineEnum(std::string key, std::string name, std::vector<std::string> choices,
                    int defaultIndex);
    /// Lays down a switch, shown as "On" and "Off". [setup]
    void DefineBool(std::string key, std::string name, bool defaultOn);
    /// Lays down a panel whose switch turns on what is listed under it. [setup]
    void DefineGroup(std::string key, std::string name, bool defaultOn);

    /// The record's own value. [any]
    double Value() const noexcept { return MRelaxed::Load(value); }
    /// The value that the knob has: the own one or, while redirected, what was written since the
    /// modulator has looked last. [any]
    double Knob() const noexcept;
    /// Stores a value as the user's or the host's: the knob is to have it. [any]
    void SetKnob(double newValue) noexcept;
    /// Makes what SetKnob has stored while redirected the own value; whether there was any.
    /// [audio]
    bool TakeKnob() noexcept;
    /// Says that `modulated` was not the user's, where SetKnob has just stored it. [audio]
    void ForgetKnob(double modulated) noexcept;
    /// Stores a value that nothing written before is to undo: of a state, or of many records that
    /// change together. [any]
    void Overrule(double newValue) noexcept;
    /// The same, unless the own value is not `present` any more. [any]
    void Overrule(double newValue, double present) noexcept;
    /// Stores the record's own value as it is. [any]
    void SetValue(double newValue) noexcept;
    /// Stores the modulated value as it is. [any]
    void SetSecondary(double newValue) noexcept;
    /// The value in force: the modulated one while redirected, the own one otherwise. [any]
    double Effective() const noexcept {
        return IsRedirected() ? MRelaxed::Load(secondary) : Value();
    }
    /// The value in force, made one that the record can have, whatever was written. Blocks read
    /// many records by this. [any]
    double InForce() const noexcept { return Nearest(Effective()); }
    /// The value in force as a choice, clamped to the list. [any]
    int Index() const noexcept;
    /// The value in force as a switch. [any]
    bool IsOn() const noexcept;
    /// The flags as they are at present. [any]
    std::uint8_t Flags() const noexcept {
        auto& shared = const_cast<std::uint8_t&>(flags);  // the reference takes no constant objects
        return std::atomic_ref(shared).load(std::memory_order_acquire);
    }
    bool IsRedirected() const noexcept { return (Flags() & kRedirect) != 0; }
    /// Starts or ends redirection; the secondary value starts at the value. At the end, TakeKnob
    /// has what was written to the last. [any]
    void SetRedirect(bool on) noexcept;
    bool IsEnabled() const noexcept;
    void SetEnabled(bool on) noexcept;

    /// The position 0..1 of `plain`, a value in the record's own units. [any]
    double ToNormalised(double plain) const noexcept;
    /// The value in the record's own units at position `x` of 0..1, by the rule of its kind. [any]
    double FromNormalised(double x) const noexcept;

    /// The value of the record nearest to `plain`: within the range, whole where the kind is whole,
    /// the default for what is no number. [any]
    double Nearest(double plain) const noexcept {
        if (std::isnan(plain)) return defaultValue;
        // By value, as the processor's own minimum and maximum: std::clamp would go over memory.
        const double raised = minimum > plain ? minimum : plain;
        const double inside = maximum < raised ? maximum : raised;
        return kind == ParameterKind::Float ? inside : std::floor(inside + 0.5);
    }

    /// What the user sees for `plain`, a value in the record's own units. [main]
    std::string DisplayText(double plain) const;
    /// The value that the typed text means, within the record's range: the record's own display
    /// texts read back, names of choices in any case, numbers with or without their unit. Empty
    /// when it means none. [main]
    std::optional<double> ParseDisplayText(const std::string& typed) const;

private:
    void Define(ParameterKind newKind, std::string newKey, std::string newName, double newMinimum,
                double newMaximum, double newDefault);
    // What the typed text means, whatever the range.
    std::optional<double> ReadText(const std::string& typed) const;
};
