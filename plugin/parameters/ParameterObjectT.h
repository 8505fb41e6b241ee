// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/parameters/ParameterBase.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <utility>

/// What a parameter may hold instead of a number: it writes itself to an element and reads itself
/// from one, saying whether it could.
template <class Object>
concept MStorableObject = requires(const Object& constant, Object& object, MXMLNode node) {
    constant.Save(node);
    { object.Load(node) } -> std::convertible_to<bool>;
};

/// A text as an argument of a template.
template <std::size_t kSize>
struct MElementName {
    // Not explicit: a text in quotes is to be one.
    constexpr MElementName(const char (&name)[kSize]) { std::copy_n(name, kSize, text.begin()); }

    std::array<char, kSize> text{};
};

/// A parameter that holds an object. In the state the object has a child element, named by
/// `kElement` and told from others of its kind by the parameter's identifier text.
template <MStorableObject Object, MElementName kElement>
class ParameterObjectT : public ParameterSpecialBaseCustom {
public:
    /// `arguments` make the object. [setup]
    template <class... Arguments>
    explicit ParameterObjectT(ParameterIdentity identity, Arguments&&... arguments)
        : ParameterSpecialBaseCustom(std::move(identity)),
          object_(std::forward<Arguments>(arguments)...) {}

    /// The object itself, which sees to its own threads.
    Object& Get() noexcept { return object_; }
    const Object& Get() const noexcept { return object_; }

    void SaveObject(MXMLNode node) const override {
        MXMLNode child = node.AddChild(kElement.text.data());
        child.SetAttribute("id", this->GetID());
        object_.Save(child);
    }

    bool LoadObject(MXMLNode node) override {
        for (const MXMLNode& child : node.Children()) {
            const bool isOurs =
                child.Name() == kElement.text.data() && child.Attribute("id") == this->GetID();
            if (isOurs) return object_.Load(child);
        }
        return false;
    }

private:
    Object object_;
};

// The names of the elements are stored in states; they are never changed.

template <class Object>
using ParameterSignalGeneratorT = ParameterObjectT<Object, "SignalGenerator">;
template <class Object>
using ParameterSignalGeneratorStepSequencerT =
    ParameterObjectT<Object, "SignalGeneratorStepSequencer">;
template <class Object>
using ParameterSignalGeneratorStepSequencerTypesT =
    ParameterObjectT<Object, "SignalGeneratorStepSequencerTypes">;
template <class Object>
using ParameterSignalGeneratorTransformationsT =
    ParameterObjectT<Object, "SignalGeneratorTransformations">;
template <class Object>
using ParameterSignalGeneratorShapeHarmonicsT =
    ParameterObjectT<Object, "SignalGeneratorShapeHarmonics">;
template <class Object>
using ParameterSignalGeneratorHarmonicsT = ParameterObjectT<Object, "SignalGeneratorHarmonics">;
template <class Object>
using ParameterADSRT = ParameterObjectT<Object, "ADSR">;
template <class Object>
using ParameterEnvelopeT = ParameterObjectT<Object, "Envelope">;
