// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MPluginProcessor.h"

#include "core/MException.h"
#include "core/MFormat.h"
#include "plugin/presets/MPluginPresetContent.h"
#include "product/MProductFactory.h"
#include "tools/render/MModulationReader.h"
#include "tools/render/MRenderFailure.h"
#include "tools/render/MStateFile.h"

#include <cmath>

MPluginProcessor::MPluginProcessor(const MBandSetup& setup)
    : plugin_(MProductFactory::Create()), bandCount_(setup.count) {
    if (plugin_ == nullptr) {
        throw MRenderFailure(MExitCode::Processing, "the plug-in could not be created");
    }
    SetUpBands(setup);
    ListParameters();
}

MPluginProcessor::~MPluginProcessor() = default;

void MPluginProcessor::SetUpBands(const MBandSetup& setup) {
    plugin_->CreateDefaultBands(setup.count);
    for (std::size_t i = 0; i < setup.limits.size(); ++i) {
        plugin_->BandParameters().Limit(static_cast<int>(i)).SetValue(std::log10(setup.limits[i]));
    }
    MBandOptions options = plugin_->Options();
    options.isLinearPhase = setup.crossover != MBandSetup::Crossover::Analog;
    options.hasFixedQ = setup.crossover == MBandSetup::Crossover::Hybrid;
    options.slope = setup.slope;
    plugin_->SetOptions(options);
    for (const int band : setup.muted) plugin_->SetMute(band - 1, true);
    for (const int band : setup.bypassed) plugin_->SetBandBypass(band - 1, true);
}

void MPluginProcessor::LoadState(const std::filesystem::path& file) {
    MStateFile::Load(*plugin_, file);
    bandCount_ = plugin_->Layout().bandCount;
}

void MPluginProcessor::LoadPreset(const MPreset& preset) {
    MPluginPresetContent::Load(*plugin_, preset.content);
    bandCount_ = plugin_->Layout().bandCount;
}

void MPluginProcessor::ListParameters() {
    for (int i = 0; i < plugin_->ParameterCount(); ++i) {
        ParameterMainBase& parameter = plugin_->Parameters().At(i);
        if (parameter.Record() == nullptr) continue;
        identifiers_.push_back(parameter.FirstIdentifier());
        parameters_.push_back(
            {parameter.GetID(), parameter.GetLongName(), 0, false, parameter.Record()});
    }
    const auto assign = [&](const ParameterDefinition& record, int band, bool isOfEffect) {
        for (MRenderParameter& parameter : parameters_) {
            if (parameter.record != &record) continue;
            parameter.band = band;
            parameter.isOfEffect = isOfEffect;
        }
    };
    for (int band = 0; band < plugin_->EffectCount(); ++band) {
        for (const auto& record : plugin_->Effect(band).Records()) assign(record, band + 1, true);
        assign(plugin_->BandParameters().Gain(band), band + 1, false);
        assign(plugin_->BandParameters().Panorama(band), band + 1, false);
        if (band > 0) assign(plugin_->BandParameters().Limit(band - 1), band + 1, false);
    }
}

void MPluginProcessor::SetParameter(int index, double value) {
    const auto i = static_cast<std::size_t>(index);
    plugin_->SetParameter(identifiers_[i], parameters_[i].record->ToNormalised(value), false);
}

void MPluginProcessor::Prepare(int channels, int sampleRate) {
    const bool isReady = plugin_->SetSampleRate(sampleRate) &&
                         plugin_->SetBusLayout({channels, channels}) && plugin_->InitProcessing();
    if (isReady) return;
    throw MRenderFailure(MExitCode::Processing, MFormat("the plug-in does not take {0} channels at "
                                                        "{1} Hz",
                                                        channels, sampleRate));
}

void MPluginProcessor::Modulate(int index, const MModulationReader& reader, std::string_view text) {
    MLFOSettings settings =
        plugin_->Modulation().Settings().modulators.at(static_cast<std::size_t>(index));
    reader.Read(text, settings);
    plugin_->Modulation().SetModulator(index, settings);
}

MAudioPlugin& MPluginProcessor::Plugin() noexcept { return *plugin_; }

int MPluginProcessor::Latency() { return plugin_->GetLatency(); }

void MPluginProcessor::SendMIDI(int frame, const std::array<std::uint8_t, 4>& data) {
    plugin_->ProcessMIDIEvent(frame, data);
}

void MPluginProcessor::Process(const MTransport& transport, const float* const* inputs,
                               float* const* outputs, int frames) {
    plugin_->Transport() = transport;
    plugin_->Process(inputs, outputs, frames);
}

bool MPluginProcessor::IsTailSilent() {
    for (int band = 0; band < bandCount_; ++band) {
        if (!plugin_->Effect(band).Handle().IsTailSilent()) return false;
    }
    return true;
}
