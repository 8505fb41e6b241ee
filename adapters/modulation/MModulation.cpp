// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MModulation.h"

#include "core/MException.h"
#include "core/MFailureReporter.h"
#include "core/MFormat.h"

namespace {

template <std::size_t kCount>
void CheckIndex(int index) {
    if (index < 0 || index >= static_cast<int>(kCount)) throw MException("Index out of range.");
}

}  // namespace

void MModulation::Bind(const MParameterDirectory& parameters,
                       MModulationCompiler::Effects effects) {
    compiler_.emplace(parameters, effects, multiParameters_.Records());
}

MModulationSettings MModulation::Settings() {
    const MLock lock(lock_);
    return settings_;
}

void MModulation::Change(const std::function<void(MModulationSettings&)>& change) {
    std::vector<std::string> unknown;
    {
        const MLock lock(lock_);
        MModulationSettings settings = settings_;
        change(settings);
        Prepare(settings);
        plans_.Publish();
        unknown = TakeUnknown();
    }
    for (const std::string& text : unknown) MFailureReporter::Report(text);
}

void MModulation::Prepare(const MModulationSettings& settings) {
    if (!compiler_) throw MException("There is nothing to modulate yet.");
    MModulationSettings held = settings.Held();
    plans_.Back() = compiler_->Compile(held);
    settings_ = std::move(held);
}

std::vector<std::string> MModulation::TakeUnknown() {
    std::vector<std::string> texts;
    for (const std::string& id : compiler_->UnknownTargets()) {
        if (!reported_.insert(id).second) continue;
        texts.push_back(MFormat("There is no parameter \"{0}\" to modulate.", id));
    }
    return texts;
}

MModulation::Replacement::Replacement(MModulation& modulation, const MModulationSettings& settings)
    : modulation_(modulation), lock_(modulation.lock_) {
    try {
        modulation_.Prepare(settings);
    } catch (const MException& exception) {
        reports_.push_back(exception.Text());
        MModulationSettings harmless = settings;
        for (MMultiParameterSettings& entry : harmless.multiParameters) entry.targets.clear();
        modulation_.Prepare(harmless);
    }
    for (const std::string& text : modulation_.TakeUnknown()) reports_.push_back(text);
}

MModulation::Replacement::~Replacement() {
    lock_.reset();
    for (const std::string& text : reports_) MFailureReporter::Report(text);
}

void MModulation::SetSettings(const MModulationSettings& settings) {
    Change([&](MModulationSettings& own) { own = settings; });
}

void MModulation::SetModulator(int index, const MLFOSettings& settings) {
    CheckIndex<kModulators>(index);
    Change([&](MModulationSettings& own) { own.modulators[index] = settings; });
}

void MModulation::SetMultiParameter(int index, const MMultiParameterSettings& settings) {
    CheckIndex<kMultiParameters>(index);
    Change([&](MModulationSettings& own) { own.multiParameters[index] = settings; });
}

MModulationTarget MModulation::MakeTarget(const std::string& id) const {
    MModulationTarget target;
    target.id = id;
    ParameterMainBase* const parameter = compiler_ ? compiler_->Find(target) : nullptr;
    if (parameter == nullptr) {
        throw MException(MFormat("There is no parameter \"{0}\" to modulate.", id));
    }
    target.name = parameter->GetName();
    target.identifier = parameter->FirstIdentifier();
    target.value = parameter->GetNormalised(0);
    return target;
}

void MModulation::Prepare(int sampleRate) noexcept {
    keys_ = {};  // their ends will not be told
    engine_.Prepare(plans_.Front(), sampleRate);
}

void MModulation::Adopt() noexcept {
    if (!plans_.HasNewer()) return;
    engine_.Release(plans_.Front());
    plans_.Adopt();
    engine_.Begin(plans_.Front());
}

void MModulation::NoteOn(int channel, int note, double velocity) noexcept {
    keys_.Press(channel, note);
    engine_.NoteOn(plans_.Front(), velocity);
}

// The envelope holds until the last key is up.
void MModulation::NoteOff(int channel, int note) noexcept {
    keys_.Release(channel, note);
    if (!keys_.IsAnyHeld()) engine_.NoteOff();
}
