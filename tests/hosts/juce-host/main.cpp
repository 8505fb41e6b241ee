// SPDX-License-Identifier: GPL-3.0-or-later
// Loads a plug-in the way a workstation does and tells what happened, one fact per line.
#include <cstdio>
#include <cstdlib>
#include <juce_audio_formats/juce_audio_formats.h>
#include <juce_audio_processors/juce_audio_processors.h>
#include <memory>
#include <string>

namespace {

constexpr double kRate = 48000;
constexpr int kBlock = 512;
constexpr int kBlocks = 188;  // two seconds

[[noreturn]] void Fail(const juce::String& what) {
    std::fprintf(stderr, "juce-host: %s\n", what.toRawUTF8());
    std::exit(1);
}

std::unique_ptr<juce::AudioPluginInstance> Load(const juce::String& path) {
    juce::AudioPluginFormatManager formats;
    formats.addDefaultFormats();
    juce::OwnedArray<juce::PluginDescription> found;
    for (auto* format : formats.getFormats()) {
        if (format->fileMightContainThisPluginType(path)) format->findAllTypesForFile(found, path);
    }
    if (found.isEmpty()) Fail("no plug-in in " + path);
    juce::String error;
    auto plugin = formats.createPluginInstance(*found[0], kRate, kBlock, error);
    if (plugin == nullptr) Fail(error);
    return plugin;
}

juce::AudioProcessorParameter& Find(juce::AudioPluginInstance& plugin, const juce::String& name) {
    for (auto* parameter : plugin.getParameters()) {
        if (parameter->getName(64) == name) return *parameter;
    }
    Fail("no parameter " + name);
}

/// Two seconds of a click every quarter of a second through the plug-in; Dry falls from 1 to 0 in
/// the second half when `automates`.
juce::AudioBuffer<float> Render(juce::AudioPluginInstance& plugin, bool automates) {
    plugin.prepareToPlay(kRate, kBlock);
    juce::AudioBuffer<float> sound(2, kBlocks * kBlock);
    juce::MidiBuffer midi;
    for (int block = 0; block < kBlocks; ++block) {
        juce::AudioBuffer<float> piece(2, kBlock);
        piece.clear();
        for (int i = 0; i < kBlock; ++i) {
            if ((block * kBlock + i) % 12000 == 0)
                for (int channel = 0; channel < 2; ++channel) piece.setSample(channel, i, 0.5f);
        }
        if (automates && block >= kBlocks / 2)
            Find(plugin, "Dry").setValue(1 - 2.0f * (block - kBlocks / 2) / kBlocks);
        plugin.processBlock(piece, midi);
        for (int channel = 0; channel < 2; ++channel)
            sound.copyFrom(channel, block * kBlock, piece, channel, 0, kBlock);
    }
    plugin.releaseResources();
    return sound;
}

void Write(const juce::AudioBuffer<float>& sound, const juce::File& file) {
    file.deleteFile();
    juce::WavAudioFormat format;
    std::unique_ptr<juce::AudioFormatWriter> writer(
        format.createWriterFor(new juce::FileOutputStream(file), kRate, 2, 32, {}, 0));
    if (writer == nullptr || !writer->writeFromAudioSampleBuffer(sound, 0, sound.getNumSamples()))
        Fail("cannot write " + file.getFullPathName());
}

float Difference(const juce::AudioBuffer<float>& a, const juce::AudioBuffer<float>& b) {
    float largest = 0;
    for (int channel = 0; channel < 2; ++channel)
        for (int i = 0; i < a.getNumSamples(); ++i)
            largest =
                juce::jmax(largest, std::abs(a.getSample(channel, i) - b.getSample(channel, i)));
    return largest;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::printf(
            "Usage: juce-host PLUGIN OUT-FOLDER [NAME=POSITION]...\n"
            "Sets the named parameters (0..1), renders two seconds of clicks (plain.wav),\n"
            "again with an automated Dry (automated.wav), saves the state, loads it into a\n"
            "new instance and renders once more (restored.wav).\n");
        return argc == 2 && juce::String(argv[1]) == "--help" ? 0 : 2;
    }
    const juce::ScopedJuceInitialiser_GUI gui;
    const juce::File folder = juce::File::getCurrentWorkingDirectory().getChildFile(argv[2]);
    folder.createDirectory();
    const juce::String path =
        juce::File::getCurrentWorkingDirectory().getChildFile(argv[1]).getFullPathName();

    juce::MemoryBlock state;
    juce::AudioBuffer<float> plain;
    {
        const auto plugin = Load(path);
        std::printf("name: %s\nvendor: %s\nparameters: %d\nlatency: %d\n",
                    plugin->getName().toRawUTF8(),
                    plugin->getPluginDescription().manufacturerName.toRawUTF8(),
                    plugin->getParameters().size(), plugin->getLatencySamples());
        for (int i = 3; i < argc; ++i) {
            const juce::StringArray parts = juce::StringArray::fromTokens(argv[i], "=", "");
            auto& parameter = Find(*plugin, parts[0]);
            parameter.setValue(parts[1].getFloatValue());
            std::printf("%s: %s\n", parts[0].toRawUTF8(),
                        parameter.getText(parameter.getValue(), 64).toRawUTF8());
        }
        plugin->getStateInformation(state);
        plain = Render(*plugin, false);
        Write(plain, folder.getChildFile("plain.wav"));
        Write(Render(*plugin, true), folder.getChildFile("automated.wav"));
    }
    const auto restored = Load(path);
    restored->setStateInformation(state.getData(), static_cast<int>(state.getSize()));
    const auto again = Render(*restored, false);
    Write(again, folder.getChildFile("restored.wav"));
    std::printf("state: %d bytes\nrestored differs by: %g\n", static_cast<int>(state.getSize()),
                static_cast<double>(Difference(plain, again)));
    return 0;
}
