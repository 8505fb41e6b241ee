// SPDX-License-Identifier: GPL-3.0-or-later
#include "product/MProductInstance.h"

#include "core/MGuard.h"
#include "product/MProductFactory.h"
#include "product/MProductFiles.h"

#include <utility>

MProductInstance::MProductInstance()
    : settings_(MProductFiles::MakeSettings()),
      library_(MProductFiles::MakePresets()),
      bandLibrary_(MProductFiles::MakeBandPresets()),
      plugin_(MProductFactory::Create(settings_.get(), &switcher_)) {
    if (plugin_ == nullptr) return;
    presets_ = std::make_unique<Presets>(*library_, *plugin_);
    bandPresets_ = std::make_unique<BandPresets>(*bandLibrary_, *plugin_);
    switcher_.SetStep([this](int steps) { presets_->Step(steps); });
    switcher_.SetChoice([this](int place) { presets_->LoadPlace(place); });
}

// The step in hand needs what goes first.
MProductInstance::~MProductInstance() { switcher_.Stop(); }

std::unique_ptr<MProductInstance> MProductInstance::Create() {
    return Guard("MProductInstance::Create", std::unique_ptr<MProductInstance>(), [] {
        // The constructor is private: whoever has an instance has a plug-in.
        std::unique_ptr<MProductInstance> instance(new MProductInstance);
        return instance->plugin_ != nullptr ? std::move(instance) : nullptr;
    });
}
