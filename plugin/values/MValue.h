// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MXML.h"

#include <string>

/// A scale: what turns a value into the text that the user sees, typed text into a value, and
/// either into a position 0..1. A scale describes a value that lives elsewhere and outlives it.
///
/// The order of the virtual operations is part of the interface: new ones are added at the end.
/// Values are read and written one at a time with relaxed atomic access, so that a scale may be
/// used while the audio thread reads the value; the scale itself belongs to one thread. All of it
/// is [main] unless stated otherwise.
class MValue {
public:
    MValue() = default;
    MValue(const MValue&) = delete;
    MValue& operator=(const MValue&) = delete;

    /// The value with 6 decimals, for storage.
    virtual std::string ToString() const = 0;
    /// Reads a plain number, for storage; returns whether `text` was one.
    virtual bool FromString(const std::string& text) = 0;
    /// Sets the value to its default; returns whether it changed.
    virtual bool SetDefault() = 0;
    /// Takes over the position of another scale, whatever its units; returns whether the value
    /// changed.
    virtual bool Assign(const MValue& other) = 0;
    virtual void Reserved4();
    /// Writes "id", the type name, and "value" to the element.
    virtual void Save(MXMLNode node) const;
    /// Reads what Save wrote; an element of another type, or without a readable value, changes
    /// nothing. Returns whether the value was read.
    virtual bool Load(MXMLNode node);
    virtual std::string TypeName() const = 0;
    virtual void Reserved8();
    /// The value as the user sees it.
    virtual std::string GetDisplayText() const = 0;
    virtual void Reserved10();
    /// What the user would see with the value at position `x` of 0..1.
    virtual std::string GetDisplayTextFrom01(double x) const = 0;
    /// Takes what the user typed: a scale with an editor of its own opens it, any other parses
    /// `text`. Returns whether the value changed.
    virtual bool Edit(const std::string& text);
    /// Sets the value that the typed text means, held within the limits; text that means none
    /// leaves the value alone. Returns whether it changed.
    virtual bool ParseDisplayText(const std::string& text) = 0;
    /// Holds the value within the limits.
    virtual void Validate() = 0;
    /// Moves the value up or down by 2^`power` steps, but by no more than the largest step.
    virtual void IncrementPower(int power, bool up) = 0;
    /// Moves the value by `count` steps, down when negative. The result stays within the limits.
    virtual void Increment(int count) = 0;
    /// The value's position, 0..1.
    virtual double GetNormalised() const = 0;
    /// Sets the value at position `x`, which the caller keeps within 0..1.
    virtual void SetNormalised(double x) = 0;
    virtual void Reserved19();
    /// Called when an editor for the value has been opened.
    virtual void EditorHook();
    virtual void Reserved21();
    /// Makes the scale's own editor; null when it has none. The window system defines the object.
    virtual void* CreateEditor();

    virtual ~MValue();
};
