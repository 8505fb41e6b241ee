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
        plans_.Back() = Prepare(settings);
        plans_.Publish();
        unknown = TakeUnknown();
    }
    for (const std::string& text : unknown) MFailureReporter::Report(text);
}

MModulation::StampedPlan MModulation::Prepare(const MModulationSettings& settings) {
    if (!compiler_) throw MException("There is nothing to modulate yet.");
    MModulationSettings held = settings.Held();
    StampedPlan plan{compiler_->Compile(held), stamp_ + 1};
    settings_ = std::move(held);
    ++stamp_;
    return plan;
}

// The audio thread never goes back to an older plan than the one that it says it has.
MModulation::Loaded MModulation::Load(const MModulationSettings& settings) {
    auto plan = std::make_unique<StampedPlan>(Prepare(settings));
    const std::uint64_t inForce = stampInForce_.load(std::memory_order_acquire);
    std::erase_if(loaded_, [&](const auto& older) { return older->stamp < inForce; });
    loaded_.push_back(std::move(plan));
    return {&loaded_.back()->plan, loaded_.back()->stamp};
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
        loaded_ = modulation_.Load(settings);
    } catch (const MException& exception) {
        reports_.push_back(exception.Text());
        MModulationSettings harmless = settings;
        for (MMultiParameterSettings& entry : harmless.multiParameters) entry.targets.clear();
        loaded_ = modulation_.Load(harmless);
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
    engine_.Prepare(*plan_, sampleRate);
}

void MModulation::LookForNewer() noexcept {
    if (!plans_.HasNewer()) return;
    engine_.Release(*plan_);
    isReleased_ = true;
    plans_.Adopt();
}

void MModulation::Adopt(const Loaded& loaded) noexcept {
    const StampedPlan& set = plans_.Front();
    const bool isLoaded = loaded.stamp > set.stamp;
    const std::uint64_t newest = isLoaded ? loaded.stamp : set.stamp;
    const bool isNew = newest > stampInForce_.load(std::memory_order_relaxed);
    if (!isNew && !isReleased_) return;
    if (!isReleased_) engine_.Release(*plan_);
    isReleased_ = false;
    plan_ = isLoaded ? loaded.plan : &set.plan;
    engine_.Begin(*plan_);
    stampInForce_.store(newest, std::memory_order_release);
}

void MModulation::NoteOn(int channel, int note, double velocity) noexcept {
    keys_.Press(channel, note);
    engine_.NoteOn(*plan_, velocity);
}

// The envelope holds until the last key is up.
void MModulation::NoteOff(int channel, int note) noexcept {
    keys_.Release(channel, note);
    if (!keys_.IsAnyHeld()) engine_.NoteOff();
}
