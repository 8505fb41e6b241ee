// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MAudioPlugin.h"

#include "core/MFailureReporter.h"
#include "core/MFormat.h"
#include "core/MXML.h"

#include <algorithm>
#include <utility>

namespace {
constexpr int kHighestSampleRate = 1 << 22;  // hertz: far above any converter
}

MAudioPlugin::MAudioPlugin(const MPluginIdentity& identity) : identity_(identity) {}

MAudioPlugin::~MAudioPlugin() = default;

void MAudioPlugin::PostProcess(float* const* /*outputs*/, int /*sampleCount*/) {}

bool MAudioPlugin::InitProcessing() { return true; }

void MAudioPlugin::Process(const float* const* /*inputs*/, float* const* /*outputs*/,
                           int /*sampleCount*/) {}

void MAudioPlugin::ProcessUpdate() {}

bool MAudioPlugin::ReceivesMIDI() const noexcept { return false; }
bool MAudioPlugin::SendsMIDI() const noexcept { return false; }
bool MAudioPlugin::WantsHostTime() const noexcept { return false; }

void MAudioPlugin::ProcessMIDIEvent(int /*deltaFrames*/,
                                    const std::array<std::uint8_t, 4>& /*data*/) {}

int MAudioPlugin::GetLatency() const noexcept { return 0; }
int MAudioPlugin::GetTailLength() const noexcept { return 0; }

MAudioPluginEditor* MAudioPlugin::CreateEditor() { return nullptr; }
bool MAudioPlugin::HasEditor() const noexcept { return false; }

bool MAudioPlugin::SetSampleRate(int sampleRate) {
    if (sampleRate < 1) return false;
    if (sampleRate > kHighestSampleRate) {
        MFailureReporter::Report(
            MFormat("The sample rate stays at {0} Hz: {1} Hz is the highest that is possible.",
                    SampleRate(), kHighestSampleRate));
        return false;
    }
    sampleRate_.store(sampleRate, std::memory_order_relaxed);
    return true;
}

bool MAudioPlugin::SetMaximumBlockSize(int sampleCount) noexcept {
    if (sampleCount < 1) return false;
    blockSize_.store(std::min(sampleCount, kLongestBlock), std::memory_order_relaxed);
    return true;
}

bool MAudioPlugin::SetBusLayout(const MBusLayout& layout) {
    if (!layout.IsValid()) return false;
    const MBusLayout before = std::exchange(layout_, layout);
    if (InitProcessing()) return true;
    layout_ = before;
    InitProcessing();  // the attempt has stopped the blocks
    return false;
}

void MAudioPlugin::ReportLatencyChange() {
    const int latency = GetLatency();
    if (reportedLatency_.exchange(latency) == latency || host_ == nullptr) return;
    host_->ReportLatency();
}

void MAudioPlugin::ReportParameterChanges() {
    if (host_ != nullptr) host_->ReportParameterChanges();
}

void MAudioPlugin::Store(MXMLNode /*node*/, MArchive& /*archive*/) {}

void MAudioPlugin::SetDefaults() {}

void MAudioPlugin::SendHostAutomation(std::uint32_t identifier, double x) {
    if (host_ != nullptr) host_->SendParameterAutomation(identifier, x);
}

void MAudioPlugin::ParameterChanged(std::uint32_t /*identifier*/, double /*oldValue*/,
                                    double /*newValue*/) noexcept {}

void MAudioPlugin::ReportMovedParameters() {}

void MAudioPlugin::EndBackgroundWork() {}

void MAudioPluginAdapter::SendParameterAutomation(std::uint32_t /*identifier*/, double /*x*/) {}

void MAudioPluginAdapter::ReportParameterChanges() {}
