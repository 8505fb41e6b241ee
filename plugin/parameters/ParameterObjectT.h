// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/parameters/ParameterBase.h"

#include <concepts>
#include <utility>

/// What a parameter may hold instead of a number: it writes itself to an element and reads itself
/// from one, saying whether it could.
template <class Object>
concept MStorableObject = requires(const Object& constant, Object& object, MXMLNode node) {
    constant.Save(node);
    { object.Load(node) } -> std::convertible_to<bool>;
};

/// A parameter that holds an object. In the state the object has a child element, named by `Tag`
/// and told from others of its kind by the parameter's identifier text.
template <MStorableObject Object, class Tag>
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
        MXMLNode child = node.AddChild(Tag::kElement);
        child.SetAttribute("id", this->GetID());
        object_.Save(child);
    }

    bool LoadObject(MXMLNode node) override {
        for (const MXMLNode& child : node.Children()) {
            if (child.Name() != Tag::kElement || child.Attribute("id") != this->GetID()) continue;
            return object_.Load(child);
        }
        return false;
    }

private:
    Object object_;
};

/// Names of the objects' elements in the state; never renamed.
namespace ParameterObjectTags {
struct SignalGenerator {
    static constexpr const char* kElement = "SignalGenerator";
};
struct SignalGeneratorStepSequencer {
    static constexpr const char* kElement = "SignalGeneratorStepSequencer";
};
struct SignalGeneratorStepSequencerTypes {
    static constexpr const char* kElement = "SignalGeneratorStepSequencerTypes";
};
struct SignalGeneratorTransformations {
    static constexpr const char* kElement = "SignalGeneratorTransformations";
};
struct SignalGeneratorShapeHarmonics {
    static constexpr const char* kElement = "SignalGeneratorShapeHarmonics";
};
struct SignalGeneratorHarmonics {
    static constexpr const char* kElement = "SignalGeneratorHarmonics";
};
struct ADSR {
    static constexpr const char* kElement = "ADSR";
};
struct Envelope {
    static constexpr const char* kElement = "Envelope";
};
}  // namespace ParameterObjectTags

template <class Object>
using ParameterSignalGeneratorT = ParameterObjectT<Object, ParameterObjectTags::SignalGenerator>;
template <class Object>
using ParameterSignalGeneratorStepSequencerT =
    ParameterObjectT<Object, ParameterObjectTags::SignalGeneratorStepSequencer>;
template <class Object>
using ParameterSignalGeneratorStepSequencerTypesT =
    ParameterObjectT<Object, ParameterObjectTags::SignalGeneratorStepSequencerTypes>;
template <class Object>
using ParameterSignalGeneratorTransformationsT =
    ParameterObjectT<Object, ParameterObjectTags::SignalGeneratorTransformations>;
template <class Object>
using ParameterSignalGeneratorShapeHarmonicsT =
    ParameterObjectT<Object, ParameterObjectTags::SignalGeneratorShapeHarmonics>;
template <class Object>
using ParameterSignalGeneratorHarmonicsT =
    ParameterObjectT<Object, ParameterObjectTags::SignalGeneratorHarmonics>;
template <class Object>
using ParameterADSRT = ParameterObjectT<Object, ParameterObjectTags::ADSR>;
template <class Object>
using ParameterEnvelopeT = ParameterObjectT<Object, ParameterObjectTags::Envelope>;
