// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/hostcheck/MPluginLibrary.h"
#include "tools/hostcheck/MVst2Host.h"
#include "tools/render/MPluginProcessor.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The plug-in library as the processor of a render: everything goes through the interface that
/// hosts use. Names, ranges and texts are those of the plug-in built in, which stays silent,
/// follows every setting and hands over its state at the start.
class MLibraryProcessor : public MBlockProcessor {
public:
    /// Loads the library at `path` with the state of `catalogue`, which outlives this. Throws
    /// MRenderFailure: File when it does not load, Processing when it is not this plug-in. [main]
    MLibraryProcessor(const std::string& path, MPluginProcessor& catalogue);
    ~MLibraryProcessor() override;

    std::span<const MRenderParameter> Parameters() const override {
        return catalogue_.Parameters();
    }
    int BandCount() const override { return catalogue_.BandCount(); }
    void SetParameter(int index, double value) override;
    void Prepare(int channels, int sampleRate) override;
    void SendMIDI(int frame, const std::array<std::uint8_t, 4>& data) override {
        host_->SendMIDI(frame, data);
    }
    int Latency() override { return host_->Effect().initialDelay; }
    void Process(const MTransport& transport, const float* const* inputs, float* const* outputs,
                 int frames) override;
    /// A host cannot ask; no echo is far behind when nothing has sounded for long enough. [main]
    bool IsTailSilent() override;

private:
    void MatchParameters();
    void CarryOverState();
    void NoteLevels(float* const* outputs, int frames);

    MPluginProcessor& catalogue_;
    std::optional<MPluginLibrary> library_;
    std::optional<MVst2Host> host_;
    std::vector<int> indices_;  // in the library, of each parameter
    int channels_ = 0;
    int sampleRate_ = 0;
    std::int64_t position_ = 0;     // frames
    std::int64_t quietFrames_ = 0;  // since the last audible one
    std::vector<float> unheard_;    // channels that the library has and the render has not
    std::vector<float> silence_;
};
