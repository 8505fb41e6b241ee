// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <juce_audio_processors/juce_audio_processors.h>
#include <thread>

/// A song that plays from its start.
class MSong : public juce::AudioPlayHead {
public:
    MSong(double tempo, double rate) : tempo_(tempo), rate_(rate) {}
    void Seek(int frame) { frame_ = frame; }
    juce::Optional<PositionInfo> getPosition() const override {
        PositionInfo position;
        position.setBpm(tempo_);
        position.setTimeSignature(TimeSignature{4, 4});
        position.setTimeInSamples(frame_);
        position.setTimeInSeconds(frame_ / rate_);
        position.setPpqPosition(frame_ / rate_ * tempo_ / 60);
        position.setIsPlaying(true);
        return position;
    }

private:
    double tempo_;  // quarter notes per minute
    double rate_;   // hertz
    int frame_ = 0;
};

/// What the plug-in tells of itself, and on which thread.
class MChangeEar : public juce::AudioProcessorListener {
public:
    void audioProcessorParameterChanged(juce::AudioProcessor*, int, float) override {}
    void audioProcessorChanged(juce::AudioProcessor* plugin,
                               const ChangeDetails& details) override {
        if (std::this_thread::get_id() == audio_.load()) ++heardOnAudio_;
        if (details.latencyChanged) latency_ = plugin->getLatencySamples();
        if (details.parameterInfoChanged) ++displays_;
    }
    /// From here on the thread that calls this runs blocks.
    void EnterAudio() { audio_ = std::this_thread::get_id(); }
    void LeaveAudio() { audio_ = std::thread::id(); }
    int Latency() const { return latency_; }
    int Displays() const { return displays_; }
    int HeardOnAudio() const { return heardOnAudio_; }

private:
    std::atomic<std::thread::id> audio_ = std::thread::id();
    std::atomic<int> latency_ = -1, displays_ = 0, heardOnAudio_ = 0;
};
