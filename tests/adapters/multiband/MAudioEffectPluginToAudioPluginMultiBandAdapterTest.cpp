// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"
#include "core/MException.h"
#include "tests/support/ProbeEffect.h"
#include "tests/support/Reports.h"
#include "tests/support/RunPlugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

namespace {

using MultiBand = MAudioEffectPluginToAudioPluginMultiBandAdapter;

/// Counts what the plug-in tells its host.
class Host final : public MAudioPluginAdapter {
public:
    void SendBypassAutomation(bool) override {}
    void GenerateMIDIEvent(int, const std::array<std::uint8_t, 4>&) override {}
    void ReportLatency() override { latencies.push_back(plugin->GetLatency()); }
    void ChangeEditorSize(int, int) override {}
    void ReportParameterChanges() override { ++changes; }

    MAudioPlugin* plugin = nullptr;
    std::vector<int> latencies;
    int changes = 0;
};

class MultiBandTest : public testing::Test {
protected:
    void Make(int bands, const ProbeEffect::Script& script = {}) {
        settings_.Set(MSettingKeys::kDefaultBandCount, bands);
        plugin_ = std::make_unique<MultiBand>(
            MEffectAdapterParts{{}, ProbeEffect::Reset(script), {}, &settings_, nullptr});
        host_.plugin = plugin_.get();
        plugin_->SetHost(&host_);
        if (plugin_->Initialize()) plugin_->InitProcessing();
    }
    double LimitHertz(int index) {
        return std::pow(10.0, plugin_->BandParameters().Limit(index).Value());
    }

    MMemorySettings settings_;
    Host host_;
    std::unique_ptr<MultiBand> plugin_;
};

TEST_F(MultiBandTest, StartsWithTheDefaultBandsOfTheSettingAndGoesBackToThem) {
    const std::pair<int, std::vector<double>> rows[] = {
        {1, {}},
        {2, {1000}},
        {3, {200, 2000}},
        {4, {200, 1000, 5000}},
        {5, {100, 500, 2000, 8000}},
        {6, {100, 300, 1000, 3000, 8000}},
        {7, {200, 2000}},  // no such count: the usual three
    };
    for (const auto& [setting, limits] : rows) {
        Make(setting);
        const MBandLayout layout = plugin_->Layout();
        EXPECT_EQ(layout.bandCount, static_cast<int>(limits.size()) + 1);
        EXPECT_EQ(layout.editedBand, layout.bandCount / 2);
        for (std::size_t i = 0; i < limits.size(); ++i) {
            EXPECT_NEAR(LimitHertz(static_cast<int>(i)), limits[i], 1e-9 * limits[i]);
        }
    }
    EXPECT_EQ(plugin_->Effect(5).Name(), "Band 6");

    plugin_->SetMute(1, true);
    plugin_->SetBandBypass(2, true);
    plugin_->BandParameters().Gain(0).SetValue(6);
    plugin_->BandParameters().Panorama(2).SetValue(-0.5);
    plugin_->Effect(0).Records()[ProbeEffect::Level].SetValue(3);
    host_.changes = 0;
    plugin_->CreateDefaultBands(4);
    EXPECT_EQ(host_.changes, 1);
    for (const int count : {0, 7, -1}) EXPECT_THROW(plugin_->CreateDefaultBands(count), MException);
    EXPECT_EQ(plugin_->Layout().bandCount, 4);
    EXPECT_FALSE(plugin_->Layout().mute[1] || plugin_->Layout().bypass[2]);
    EXPECT_EQ(plugin_->BandParameters().Gain(0).Value(), 0);
    EXPECT_EQ(plugin_->BandParameters().Panorama(2).Value(), 0);
    EXPECT_EQ(plugin_->Effect(0).Records()[ProbeEffect::Level].Value(), 1);
}

TEST_F(MultiBandTest, SoloIsWhatMuteLeaves) {
    const auto soloed = [&] {
        std::string text;
        for (const bool on : plugin_->Layout().solo) text += on ? '1' : '0';
        return text;
    };
    Make(3);
    EXPECT_EQ(soloed(), "000000");
    plugin_->SetMute(0, true);
    plugin_->SetMute(2, true);
    EXPECT_EQ(soloed(), "010000");
    plugin_->SetMute(1, true);
    EXPECT_EQ(soloed(), "000000") << "nothing is heard at all";
    plugin_->SetSolo(2, true);
    EXPECT_EQ(soloed(), "001000");
    plugin_->SetSolo(2, false);
    EXPECT_EQ(soloed(), "000000");
    EXPECT_THROW(plugin_->SetSolo(3, true), MException);
    EXPECT_THROW(plugin_->SetMute(-1, true), MException);
    Make(1);
    EXPECT_EQ(soloed(), "000000");
}

TEST_F(MultiBandTest, ReportsTheLatencyOnceAndOnlyWhenItDiffersAndHasItsTail) {
    Make(3);
    EXPECT_THAT(host_.latencies, ElementsAre());
    EXPECT_EQ(plugin_->GetTailLength(), 4096);
    plugin_->SetOptions({.isLinearPhase = true, .wet = {}, .dry = {}});
    plugin_->SetOptions({.isLinearPhase = true, .wet = {}, .dry = {}});
    EXPECT_THAT(host_.latencies, ElementsAre(3072));
    EXPECT_EQ(plugin_->GetTailLength(), 4098);
    plugin_->CreateDefaultBands(1);
    EXPECT_THAT(host_.latencies, ElementsAre(3072, 0));
    EXPECT_EQ(plugin_->GetTailLength(), 0);
    plugin_->InitProcessing();
    plugin_->CreateDefaultBands(6);
    EXPECT_THAT(host_.latencies, ElementsAre(3072, 0, 3072));
}

TEST_F(MultiBandTest, KeepsABandLayoutInARecordWithItsShortenedKeys) {
    Make(6);
    plugin_->SetMute(5, true);
    plugin_->SetBandBypass(0, true);
    plugin_->BandParameters().Limit(4).SetValue(std::log10(7654.321));
    MXMLTree tree("layout");
    plugin_->SaveBandSettings(tree.Root());
    EXPECT_THAT(
        tree.Write(),
        HasSubstr(R"(<layout BandCount="6" BandLimit="2" andLimit="2.47712125472" ndLimit="3")"
                  R"( dLimit="3.47712125472" Limit="3.88390667132" BandMute="0")"
                  R"( BandBypass="1" andMute="0" andBypass="0" ndMute="0" ndBypass="0")"
                  R"( dMute="0" dBypass="0" Mute="0" Bypass="0" ute="1" ypass="0" />)"));

    Make(2);
    plugin_->LoadBandSettings(tree.Root());
    EXPECT_EQ(plugin_->Layout().bandCount, 6);
    EXPECT_TRUE(plugin_->Layout().mute[5] && plugin_->Layout().bypass[0]);
    EXPECT_NEAR(LimitHertz(4), 7654.321, 1e-6);
}

TEST_F(MultiBandTest, RefusesALayoutRecordWithoutSuchBandsAndKeepsItsOwn) {
    Make(3);
    for (const char* count : {"0", "7", "-1", "2.5", "many", "1e9"}) {
        MXMLTree tree("layout");
        tree.Root().SetAttribute("BandCount", count);
        tree.Root().SetAttribute("BandMute", "1");
        EXPECT_THAT([&] { plugin_->LoadBandSettings(tree.Root()); },
                    ThrowsMessage<MException>("Invalid number of bands."));
        EXPECT_EQ(plugin_->Layout().bandCount, 3);
        EXPECT_FALSE(plugin_->Layout().mute[0]);
    }
    MXMLTree odd("layout");  // what is absent or no number stays, what is out of range is held
    odd.Root().SetAttribute("BandLimit", "no number");
    odd.Root().SetAttribute("andLimit", "99");
    plugin_->LoadBandSettings(odd.Root());
    EXPECT_EQ(plugin_->Layout().bandCount, 3);
    EXPECT_NEAR(LimitHertz(0), 200, 1e-9);
    EXPECT_NEAR(LimitHertz(1), 20000, 1e-6);
}

TEST_F(MultiBandTest, IsOfNoUseWithoutAllItsEffects) {
    const Reports reports;
    Make(3, {.createsAtMost = 4});
    EXPECT_THAT(reports.texts, ElementsAre("Error creating plugin."));
    EXPECT_EQ(ProbeEffect::Noted().destroyed, 4);
    Channels input(2, 64, 1), output(2, 64);
    RunPlugin(*plugin_, input, output, 64);
    EXPECT_EQ(output[0], std::vector<float>(64, 0.0f));
}

TEST_F(MultiBandTest, KeepsTheLayoutThatIsHeardWhenOthersCannotBePrepared) {
    Make(2);
    ProbeEffect::Reset({.prepareResult = 1});
    EXPECT_THROW(plugin_->CreateDefaultBands(6), MException);
    EXPECT_EQ(plugin_->Layout().bandCount, 2);
    ProbeEffect::Reset();
    plugin_->CreateDefaultBands(6);
    EXPECT_EQ(plugin_->Layout().bandCount, 6);
}

TEST_F(MultiBandTest, MetersBandsInputAndOutput) {
    Make(2);
    plugin_->BandParameters().Dry().SetValue(0);
    plugin_->BandParameters().OutputGain().SetValue(-6);
    plugin_->SetMute(1, true);
    Channels input(2, 4800), output(2, 4800);
    std::fill(input[0].begin(), input[0].end(), 0.5f);
    RunPlugin(*plugin_, input, output, 480);
    EXPECT_EQ(plugin_->InputMeter().Peak(0), 0) << "nobody looks";
    plugin_->SetMetering(true);
    RunPlugin(*plugin_, input, output, 480);
    EXPECT_FLOAT_EQ(plugin_->InputMeter().Peak(0), 0.5f);
    EXPECT_EQ(plugin_->InputMeter().Peak(1), 0);
    EXPECT_NEAR(plugin_->BandMeter(0).Peak(0), 0.5, 0.01);
    EXPECT_EQ(plugin_->BandMeter(1).Peak(0), 0);
    EXPECT_NEAR(plugin_->OutputMeter().Peak(0), 0.25, 0.01);
    plugin_->Bypass().SetValue(1);
    RunPlugin(*plugin_, input, output, 480);
    EXPECT_NEAR(plugin_->OutputMeter().Peak(0), 0.5, 0.01);
}

TEST_F(MultiBandTest, TheButtonsHoldWetAndDryAtTheirEnds) {
    Make(1);
    plugin_->BandParameters().Wet().SetValue(0.25);
    plugin_->BandParameters().Dry().SetValue(0);
    const auto level = [&](MForcedMix wet, MForcedMix dry) {
        plugin_->SetOptions({.wet = wet, .dry = dry});
        Channels input(2, 64), output(2, 64);
        std::fill(input[0].begin(), input[0].end(), 1.0f);
        RunPlugin(*plugin_, input, output, 32);
        return output[0][63];
    };
    EXPECT_EQ(level({}, {}), 0.25f);
    EXPECT_EQ(level({.full = true}, {}), 1);
    EXPECT_EQ(level({.off = true}, {}), 0);
    EXPECT_EQ(level({.off = true}, {.full = true}), 1);
    EXPECT_EQ(level({.full = true}, {.off = true, .full = true}), 2);
}

}  // namespace
