// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "hosts/vst2/VstOpcodes.h"
#include "hosts/vst2/VstTypes.h"
#include "tools/hostcheck/MPluginLibrary.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

/// One instance of a VST 2.4 plug-in in a host that keeps to the published interface. Whatever is
/// asked goes through it, as it does in a workstation; the plug-in is closed at the end.
class MVst2Host {
public:
    /// What the plug-in has asked of its host so far.
    struct Requests {
        std::atomic<int> latencyReports = 0;
        std::atomic<int> displayUpdates = 0;
        std::atomic<int> automations = 0;
        /// Reports and updates on the thread of a block or its events, while that runs.
        std::atomic<int> inBlocks = 0;
    };

    /// Creates and opens an instance. Throws MException when the plug-in gives none. [main]
    explicit MVst2Host(MPluginLibrary::Vst2Entry entry);
    ~MVst2Host();
    MVst2Host(const MVst2Host&) = delete;
    MVst2Host& operator=(const MVst2Host&) = delete;

    const Vst2::AEffect& Effect() const noexcept { return *effect_; }
    const Requests& Asked() const noexcept { return asked_; }
    /// Any call, as it stands in the interface. [any]
    Vst2::VstIntPtr Call(Vst2::VstEffectOpcode opcode, Vst2::VstInt32 index = 0,
                         Vst2::VstIntPtr value = 0, void* pointer = nullptr, float number = 0);

    /// The text that an opcode writes, at most 255 bytes. [main]
    std::string Text(Vst2::VstEffectOpcode opcode, int index = 0);
    int ParameterCount() const noexcept { return effect_->numParams; }
    /// The parameter that the plug-in calls `name`. [main]
    std::optional<int> FindParameter(std::string_view name);
    /// Positions are 0..1. [any]
    void SetParameter(int index, float position) {
        effect_->setParameter(effect_, index, position);
    }
    float GetParameter(int index) { return effect_->getParameter(effect_, index); }
    /// Sets a parameter to a value as its user would type it; false when the plug-in does not
    /// understand. [main]
    bool SetParameterText(int index, const std::string& text);

    std::vector<std::uint8_t> SaveState();
    void LoadState(std::span<const std::uint8_t> state);

    /// Whether the host looks for other channels when it is told; it does from the start. [main]
    void SetFollowsChanges(bool on) noexcept { followsChanges_ = on; }
    /// Stops, sets everything and starts again. False when the plug-in does not take as many
    /// channels. [main]
    bool Start(int channels, int sampleRate, int maximumFrames);
    /// What the plug-in finds when it asks for the time. [audio]
    void SetTime(const Vst2::VstTimeInfo& time) noexcept { time_ = time; }
    /// A MIDI message for the next block. [audio]
    void SendMIDI(int frame, const std::array<std::uint8_t, 4>& data);
    /// One block: as many channels as the plug-in says it has. [audio]
    void Process(const float* const* inputs, float* const* outputs, int frames);

private:
    static Vst2::VstIntPtr Answer(Vst2::AEffect* effect, Vst2::VstInt32 opcode,
                                  Vst2::VstInt32 index, Vst2::VstIntPtr value, void* pointer,
                                  float number);
    bool Arrange(int channels);
    void NoteChange(std::atomic<int>& kind) noexcept;

    Vst2::AEffect* effect_ = nullptr;
    Requests asked_;
    Vst2::VstTimeInfo time_ = {};
    bool followsChanges_ = true;
    std::atomic<std::thread::id> blockThread_{};  // none between blocks
};
