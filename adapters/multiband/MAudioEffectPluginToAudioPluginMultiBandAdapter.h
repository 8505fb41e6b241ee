// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/effect/MAudioEffectPluginToAudioPluginAdapter.h"
#include "adapters/multiband/MBandDesigner.h"
#include "adapters/multiband/MBandLayoutRecord.h"
#include "adapters/multiband/MBandOptions.h"
#include "adapters/multiband/MBandRandomiser.h"
#include "adapters/multiband/MSmartRandom.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

/// An effect in up to six bands: one instance each, split by a crossover, summed again.
///
/// Whoever changes layout or options holds the change lock, and the settings lock while writing
/// them, so that others may read them at any time; and hands over all that a block needs to know,
/// which the audio thread takes at the start of one. Effects that are to run are prepared, and the
/// crossover is designed, before: for a state that is loaded without these locks, for anything else
/// under the change lock. Effects are prepared under a lock of their own, so that two threads do
/// not prepare the same one. The audio thread takes none of these locks. Order of the locks:
/// processing, preparing, change, settings or the hand-over's.
class MAudioEffectPluginToAudioPluginMultiBandAdapter final
    : public MAudioEffectPluginToAudioPluginAdapter,
      private MBandEffects {
public:
    static constexpr int kMaxBands = kMaxCrossoverBands;

    /// Starts with default bands: as many as the setting "DefaultBandCount" says, from when the
    /// layout first matters, and three until then. [main]
    explicit MAudioEffectPluginToAudioPluginMultiBandAdapter(const MEffectAdapterParts& parts);
    ~MAudioEffectPluginToAudioPluginMultiBandAdapter() override;

    /// Creates six effects, whatever the band count. See the base. [main]
    bool Initialize() override;

    bool InitProcessing_LockedPart() override;
    void UpdateMaxBufferSize() override;
    void ProcessUpdate() override;
    void StoreSettings(MXMLNode node, MArchive& archive) override;

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

    /// Whether the state that was loaded last came from a plug-in without bands. [any]
    bool IsLegacyState() const noexcept { return isLegacyState_.load(std::memory_order_relaxed); }
    /// Deals limits, gains or panoramas of the bands out to the modulators at random. Locks: the
    /// change lock, the modulation's, the settings lock. [main]
    void RandomizeBandModulation(MBandRandomiser::Kind kind);
    /// Where the randomisers' numbers go on from; by itself every instance starts elsewhere. [main]
    void SetRandomSeed(std::uint32_t seed);
    /// Lets `change` write band parameters as a whole: it comes after every state whose load has
    /// begun, and displays follow. [main]
    void ChangeBandParameters(const std::function<void(MBandParameters&)>& change);
    /// What GenerateRandomSettingsSmart leaves as it is; nothing at the start. [main]
    void SetRandomLocks(const MSmartRandom::Locks& locks);
    void GenerateRandomSettingsSmart() override;
    /// Puts every record of the bands anywhere within its range, musical or not. [main]
    void GenerateRandomSettings();
    /// Turns the MultiParameters, and with them what they move. [main]
    void GenerateRandomSettingsForMultiParameters();

    MBandParameters& BandParameters() noexcept { return parameters_; }
    /// What band `band` adds to the sum; fed while metering is on. [any]
    const MMeter& BandMeter(int band) const { return meters_.at(static_cast<std::size_t>(band)); }

protected:
    void TakeUserDefaults() override;
    void AddParameters(MParameterTable& table) override;
    void AddStateRecords(MStateRecords& records) override;
    std::unique_ptr<MStage> MakeStage() const override;
    void FillStage(MStage& stage, MArchive::Base base) override;
    void ReadIntoStage(MStage& stage) override;
    void PrepareStage(MStage& stage) override;
    bool CommitStage(MStage& stage) override;
    void AdoptChanges(const MStateHandOver::Publication& published) noexcept override;
    void SettleRamps() noexcept override;
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

    /// The same with the crossover that goes with it.
    struct Part final : MStateHandOver::Part {
        Part(const InForce& own, std::unique_ptr<MBandDesign> made)
            : inForce(own), design(std::move(made)) {}

        const InForce inForce;
        const std::unique_ptr<const MBandDesign> design;
    };

    struct Stage final : MStage {
        MBandLayout layout;
        MBandOptions options;
        std::shared_ptr<Part> part;
        bool isLegacy = false;  // from before there were bands
    };

    /// A change on its way: nothing that is in force changes until all that may fail is done.
    struct Draft {
        void SetDefaults(int bandCount);

        MBandLayout layout;
        MBandOptions options;
        // Log10 of hertz; a limit without a value stays as it is.
        std::array<std::optional<double>, MBandParameters::kLimits> limits{};
    };

    template <class Edit, class Write>
    void ChangeLayout(Edit&& edit, Write&& write);
    template <class Edit>
    void ChangeLayout(Edit&& edit) {
        ChangeLayout(edit, [] {});
    }
    template <class Edit, class Write>
    void PutIntoForce(Edit&& edit, Write&& write);
    void ApplyGlobalChange(bool bandsChanged);
    void Keep(const Draft& draft);
    int DefaultBandCount();
    void ResetBands(int count);
    void ResetEffects(int count);
    void DraftUntouchedLimits(Draft& draft);
    std::vector<MModulationTarget> RandomiserPool(MBandRandomiser::Kind kind);
    void PrepareBands(int bandCount);
    bool AreBandsPrepared(int bandCount) const;
    int RateOfDesigns() const noexcept;
    std::shared_ptr<Part> MakePart(const MBandLayout& layout, const MBandOptions& options,
                                   const MBandParameters::Limits& limits, int sampleRate);
    void RestartReturningBands(int bandCount) noexcept;
    void NotePublished(const InForce& inForce) noexcept;
    int Latency(int bandCount, const MBandOptions& options) const;
    void FollowLimits(int sampleCount);
    void FillBlock() noexcept;

    void StoreLayout(MXMLNode node, const MArchive& archive, Stage& stage);
    void StoreBandParameters(MXMLNode node, const MStagingArchive& archive, const Stage& stage);
    void SaveBandEffects(MXMLNode node, Stage& stage);
    void LoadBandEffects(MXMLNode node, Stage& stage);
    void LoadLegacyEffect(MXMLNode node, const MArchive& archive, Stage& stage);
    void StageDefaultLimits(Stage& stage);
    MBandParameters::Limits StagedLimits(Stage& stage);
    void ProcessBand(int band, const float* const* inputs, float* const* outputs,
                     int count) override;

    MBandParameters parameters_;
    MRandom random_;  // of the randomisers; under the change lock, as the next one
    MSmartRandom::Locks randomLocks_;
    const std::span<const MRandomRule> randomRules_;

    MBandParameters::Limits firstLimits_{};     // log10 hertz, as the instance was made
    std::atomic<bool> hasUserDefaults_{false};  // set under the change lock

    MMutex settingsLock_;  // over the next two, which only change under the change lock
    MBandLayout layout_;
    MBandOptions options_;
    int publishedBands_ = 0;  // under the change lock
    MMutex preparingLock_;
    // Written under both of these locks.
    int preparedChannels_ = 0;  // of the next block; 0 before the first InitProcessing
    int preparedRate_ = 0;      // hertz
    int preparedBlock_ = 0;     // samples

    MBandProcessor processor_;
    MBandDesigner designer_{processor_};
    InForce inForce_;   // of the audio thread
    MBandBlock block_;  // of the audio thread
    std::atomic<bool> isLegacyState_{false};
    std::array<MMeter, kMaxBands> meters_;
};
