// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MXML.h"
#include "plugin/parameters/MParameterListener.h"
#include "plugin/parameters/ParameterDefinition.h"

#include <cstdint>
#include <string>

/// How a parameter object is found and who holds it.
struct ParameterIdentity {
    std::uint32_t firstIdentifier = 0;
    std::string id;    ///< stable key in the host's list, unique within its first 24 characters
    std::string name;  ///< shown to the user
    MParameterOwner* owner = nullptr;  ///< borrowed, may be absent
};

/// What faces the host under one or more consecutive identifiers; `offset` is the identifier's
/// distance from the first one. The base versions are those of a parameter that is no number: no
/// texts, the position 0.5, writes without effect.
///
/// The order of the virtual operations is part of the interface: new ones are added at the end.
class ParameterMainBase {
public:
    explicit ParameterMainBase(ParameterIdentity identity);
    ParameterMainBase(const ParameterMainBase&) = delete;
    ParameterMainBase& operator=(const ParameterMainBase&) = delete;

    virtual ~ParameterMainBase();
    virtual void Reserved1();
    virtual ParameterKind Kind() const noexcept = 0;
    /// Sets the value at position `x` of 0..1, which the caller sees to; what is no number changes
    /// nothing. Unless `silent`, tells the listener and the owner. [any]
    virtual void SetNormalised(std::uint32_t offset, double x, bool silent);
    /// Lets the record's scale read its value from an element; returns whether it did. [main]
    virtual bool LoadScale(MXMLNode node);
    /// The value's position, 0..1. [any]
    virtual double GetNormalised(std::uint32_t offset) const;
    virtual std::string GetName() const;
    /// The name where there is room for more of it. [main]
    virtual std::string GetLongName() const;
    virtual std::string GetID() const;
    /// The display text of the value, and of the value at position `x`. [main]
    virtual std::string GetValueName(std::uint32_t offset) const;
    virtual std::string GetValueNameFrom01(std::uint32_t offset, double x) const;
    /// The position 0..1 of what the user typed; that of the present value when it means nothing.
    /// Nothing changes until the position is written, and whoever listens hears of it then. [main]
    virtual double ParseValueName(std::uint32_t offset, const std::string& text);
    virtual std::string GetUnitsName() const;
    virtual bool HasOption13() const noexcept;
    /// Sends writes to the record's secondary value, which starts at the value, or back. [any]
    virtual void SetRedirect(std::uint32_t offset, bool on);
    virtual void Reserved15();
    /// The default's position on the straight scale: deliberately without the curve. [any]
    virtual double GetDefaultNormalised() const;
    /// The record behind the parameter; null for one that is no number. [any]
    virtual ParameterDefinition* Record() noexcept = 0;
    virtual MParameterOwner* Owner() const noexcept;
    virtual bool HasOption19() const noexcept;
    /// Stores `value`, in the record's own units, and tells nobody. [any]
    virtual void SetPlainValue(double value);

    std::uint32_t FirstIdentifier() const noexcept { return identity_.firstIdentifier; }

    /// Sets who learns of changes (borrowed; null for nobody), and the parameter's index there.
    /// [setup]
    void SetListener(MParameterListener* listener, int index) noexcept;
    /// Whether changes are posted to the owner. [setup]
    void SetQueued(bool queued) noexcept { isQueued_ = queued; }

protected:
    void TellChange(std::uint32_t offset, double oldValue, double newValue, bool refresh) noexcept;

private:
    const ParameterIdentity identity_;
    MParameterListener* listener_ = nullptr;
    int listenerIndex_ = 0;
    bool isQueued_ = false;
};

/// Base of the parameters that the host and the editor's ordinary controls show.
class ParameterBase : public ParameterMainBase {
public:
    using ParameterMainBase::ParameterMainBase;
};

/// Base of the parameters that bring an editor of their own.
class ParameterBaseCustom : public ParameterMainBase {
public:
    using ParameterMainBase::ParameterMainBase;

    /// Makes the editor, an object of the window system; null while there is none. [main]
    virtual void* CreateEditor();
};

/// Root of the parameters that hold an object instead of a number. The host sees a fixed 0.5; the
/// object is kept in the state.
class ParameterSpecialMainBase : public ParameterMainBase {
public:
    using ParameterMainBase::ParameterMainBase;

    ParameterKind Kind() const noexcept override { return ParameterKind::Object; }
    ParameterDefinition* Record() noexcept override { return nullptr; }
    /// Nothing that the user types is a position. [main]
    double ParseValueName(std::uint32_t offset, const std::string& text) override;

    /// Adds the object to the element as a child of its own. [main]
    virtual void SaveObject(MXMLNode node) const = 0;
    /// Reads the object from its child of the element; returns whether it was there. [main]
    virtual bool LoadObject(MXMLNode node) = 0;
};

/// Base of the parameters that hold an object with an editor of its own.
class ParameterSpecialBaseCustom : public ParameterSpecialMainBase {
public:
    using ParameterSpecialMainBase::ParameterSpecialMainBase;

    /// Makes the editor, an object of the window system; null while there is none. [main]
    virtual void* CreateEditor();
};
