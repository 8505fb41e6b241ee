// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/effect/MAudioEffectPluginToAudioPluginAdapter.h"
#include "adapters/multiband/MBandDesigner.h"
#include "adapters/multiband/MBandLayoutRecord.h"
#include "adapters/multiband/MBandOptions.h"
#include "dsp/MTripleBuffer.h"

#include <array>

/// An effect in up to six bands: one instance each, split by a crossover, summed again.
///
/// The settings lock guards layout and options; whoever changes them designs the crossover and
/// publishes what a block needs to know as a whole, which the audio thread takes over at the start
/// of the next one. The audio thread never takes the settings lock. Order of the locks: processing,
/// settings, the designer's.
class MAudioEffectPluginToAudioPluginMultiBandAdapter final
    : public MAudioEffectPluginToAudioPluginAdapter,
      private MBandEffects {
public:
    static constexpr int kMaxBands = kMaxCrossoverBands;

    /// Starts with default bands, as many as the setting "DefaultBandCount" says. [main]
    explicit MAudioEffectPluginToAudioPluginMultiBandAdapter(const MEffectAdapterParts& parts);
    ~MAudioEffectPluginToAudioPluginMultiBandAdapter() override;

    /// Creates six effects, whatever the band count. See the base. [main]
    bool Initialize() override;

    bool InitProcessing_LockedPart() override;
    void UpdateMaxBufferSize() override;
    void ProcessUpdate() override;

    /// Puts layout, options and limits into force and tells the host of another latency; to be
    /// called after any change but of parameters' values. `bandsChanged`: count, mute or bypass
    /// have changed. [main]
    void OnGlobalChange(bool bandsChanged);

    /// Makes `count` bands with default limits, at unity, heard, their effects at their defaults;
    /// `notify` puts them into force. Throws MException "Invalid number of bands." [main]
    void CreateDefaultBands(int count, bool notify = true);
    /// Reads a band layout and puts it into force. Throws MException "Invalid number of bands." and
    /// changes nothing. [main]
    void LoadBandSettings(const MXMLNode& node);
    /// Writes the band layout. [main]
    void SaveBandSettings(MXMLNode node);

    /// A copy of the layout or the options. [main]
    MBandLayout Layout();
    MBandOptions Options();
    /// Puts other options into force. [main]
    void SetOptions(const MBandOptions& options);
    /// Switch one band; solo does so by muting all others. Throws MException "Index out of range."
    /// for a band that does not run. [main]
    void SetMute(int band, bool on);
    void SetBandBypass(int band, bool on);
    void SetSolo(int band, bool on);
    /// Chooses the band that the editor shows. Throws the same. [main]
    void SetEditedBand(int band);

    MBandParameters& BandParameters() noexcept { return parameters_; }
    /// What band `band` adds to the sum; fed while metering is on. [any]
    const MMeter& BandMeter(int band) const { return meters_.at(static_cast<std::size_t>(band)); }

protected:
    void AddParameters(MParameterTable& table) override;
    void PrepareEffects() override;
    void ProcessBlock(const float* const* inputs, float* const* outputs, int sampleCount) override;
    void ProcessBypassed(float* channelBuffer, int sampleCount, int channel) override;
    void StartBypassed() override;
    int ProcessingLatency() const noexcept override { return inForce_.latency; }
    int MaximumLatency() const noexcept override;

private:
    /// What a block knows of layout and options.
    struct InForce {
        int bandCount = 1;
        int latency = 0;  // samples
        std::array<bool, kMaxBands> mute{};
        std::array<bool, kMaxBands> bypass{};
        MBandOptions options;
    };

    template <class Change>
    void ChangeLayout(Change&& change);
    void ResetBands(int count);
    void ApplyGlobalChange(bool bandsChanged);
    void PrepareBand(int band);
    int LatencyOfLayout();
    void AdoptSettings() noexcept;
    void FillBlock() noexcept;
    void ProcessBand(int band, const float* const* inputs, float* const* outputs,
                     int count) override;

    MBandParameters parameters_;

    MMutex settingsLock_;  // over the next five
    MBandLayout layout_;
    MBandOptions options_;
    int publishedBands_ = 0;
    int preparedChannels_ = 0;  // of the next block; 0 before the first InitProcessing
    int preparedRate_ = 0;      // hertz

    MBandProcessor processor_;
    MBandDesigner designer_{processor_};
    MTripleBuffer<InForce> published_;
    InForce inForce_;   // of the audio thread
    MBandBlock block_;  // of the audio thread
    std::array<MMeter, kMaxBands> meters_;
};
