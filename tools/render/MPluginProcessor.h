// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/presets/MPreset.h"
#include "tools/render/MBandSetup.h"
#include "tools/render/MBlockProcessor.h"

#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

class MAudioPlugin;
class MModulationReader;
class MAudioEffectPluginToAudioPluginMultiBandAdapter;

/// The whole plug-in as the processor of a render.
class MPluginProcessor : public MBlockProcessor {
public:
    /// Creates a plug-in of its own with the bands of `setup`. Throws MRenderFailure (Processing)
    /// when it cannot be made. [main]
    explicit MPluginProcessor(const MBandSetup& setup);
    ~MPluginProcessor() override;

    std::span<const MRenderParameter> Parameters() const override { return parameters_; }
    int BandCount() const override { return bandCount_; }
    void SetParameter(int index, double value) override;
    void Prepare(int channels, int sampleRate) override;
    int Latency() override;
    void SendMIDI(int frame, const std::array<std::uint8_t, 4>& data) override;
    void Process(const MTransport& transport, const float* const* inputs, float* const* outputs,
                 int frames) override;
    bool IsTailSilent() override;

    /// Loads the state in `file`, bands included. Throws MRenderFailure (File). [main]
    void LoadState(const std::filesystem::path& file);
    /// Sets up modulator `index`, from 0, as `text` says. Throws MRenderFailure (Usage). [main]
    void Modulate(int index, const MModulationReader& reader, std::string_view text);

    /// Loads what `preset` holds, bands included. Throws MException. [main]
    void LoadPreset(const MPreset& preset);
    /// The plug-in itself. [any]
    MAudioPlugin& Plugin() noexcept;

private:
    void SetUpBands(const MBandSetup& setup);
    void ListParameters();

    std::unique_ptr<MAudioEffectPluginToAudioPluginMultiBandAdapter> plugin_;
    int bandCount_;
    std::vector<MRenderParameter> parameters_;
    std::vector<std::uint32_t> identifiers_;  // of each of them
};
