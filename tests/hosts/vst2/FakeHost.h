// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "hosts/vst2/MAudioPluginVSTAdapter.h"
#include "plugin/MAudioPluginEditor.h"
#include "plugin/parameters/ParameterFloatT.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// A host that notes what it is asked; one at a time.
class FakeHost {
public:
    FakeHost() { current_ = this; }
    ~FakeHost() { current_ = nullptr; }
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

    static Vst2::VstIntPtr Callback(Vst2::AEffect*, Vst2::VstInt32 opcode, Vst2::VstInt32 index,
                                    Vst2::VstIntPtr value, void* pointer, float number) {
        FakeHost& host = *current_;
        if (opcode == Vst2::audioMasterVersion) return host.version;
        host.asked.emplace_back(opcode, opcode == Vst2::audioMasterAutomate ? index : value);
        host.lastNumber = number;
        if (opcode == Vst2::audioMasterGetTime && host.time) {
            return reinterpret_cast<Vst2::VstIntPtr>(&*host.time);
        }
        if (opcode == Vst2::audioMasterProcessEvents) {
            const auto* list = static_cast<const Vst2::VstEvents*>(pointer);
            for (int i = 0; i < list->numEvents; ++i) host.events.push_back(*list->events[i]);
        }
        if (opcode == Vst2::audioMasterIOChanged) return host.followsChanges ? 1 : 0;
        return 0;
    }

    int Count(int opcode) const {
        return static_cast<int>(std::count_if(
            asked.begin(), asked.end(), [&](const auto& call) { return call.first == opcode; }));
    }

    int version = 2400;
    bool followsChanges = true;  // of channels, in the plug-in's record
    std::optional<Vst2::VstTimeInfo> time;
    std::vector<std::pair<int, Vst2::VstIntPtr>> asked;  // opcode; value, or index of automation
    std::vector<Vst2::VstEvent> events;
    float lastNumber = 0;

private:
    static inline FakeHost* current_ = nullptr;
};

/// A plug-in that notes what it is told and adds 1 to what it hears.
class ProbePlugin : public MAudioPlugin, private MAudioPluginEditor {
public:
    static constexpr const char* kLongID = "An identifier of 30 characters";

    explicit ProbePlugin(MBusLayout layout = {}) : MAudioPlugin({"Probe", "Tests", "1", 1}) {
        SetBusLayout(layout);
        record_.DefineFloat("value", "Value", 0, 1, 0.25, "{0;.2}");
        MutableParameters().Add(std::make_unique<ParameterFloatT<>>(
            record_, ParameterIdentity{0, kLongID, "Long name", nullptr}));
        initialised = 0;
    }

    bool InitProcessing() override { return ++initialised > 0; }
    void Process(const float* const* inputs, float* const* outputs, int frames) override {
        if (throws) throw std::runtime_error("no block");
        ++blocks;
        for (int c = 0; c < OutputChannelCount(); ++c) {
            if (outputs[c] == nullptr) continue;
            for (int i = 0; i < frames; ++i) {
                outputs[c][i] = 1 + (inputs == nullptr ? 0 : inputs[c][i]);
            }
        }
        if (sends) Host()->GenerateMIDIEvent(frames - 1, {0x90, 60, 100, 0});
        if (reports) Report();
    }
    void ProcessMIDIEvent(int frame, const std::array<std::uint8_t, 4>& data) override {
        heard.emplace_back(frame, data[1]);
        if (reports) Report();
    }
    bool ReceivesMIDI() const noexcept override { return true; }
    bool WantsHostTime() const noexcept override { return true; }
    int GetLatency() const noexcept override { return 77; }
    int GetTailLength() const noexcept override { return tail; }
    void ReportMovedParameters() override { ++askedForMoves; }
    bool HasEditor() const noexcept override { return hasEditor; }
    MAudioPluginEditor* CreateEditor() override { return this; }

    int initialised = 0;
    int blocks = 0;
    int tail = 0;
    int askedForMoves = 0;
    bool throws = false;
    bool sends = false;
    bool reports = false;
    bool hasEditor = false;
    std::vector<std::pair<int, int>> heard;
    std::string editorCalls;

private:
    void Report() {
        Host()->ReportLatency();
        Host()->ReportParameterChanges();
    }
    int Width() const override { return 640; }
    int Height() const override { return 4; }
    bool Open(void* parent) override {
        editorCalls += "open ";
        return parent != nullptr;
    }
    void Close() override { editorCalls += "close "; }
    void Idle() override { editorCalls += "idle "; }
    bool KeyDown(const Key& key) override { return key.character == 'a' && key.virtualKey == 3; }
    bool KeyUp(const Key& key) override { return key.modifiers == 2; }

    ParameterDefinition record_;
};
