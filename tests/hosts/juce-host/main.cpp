// SPDX-License-Identifier: GPL-3.0-or-later
// Loads a plug-in the way a workstation does and tells what happened, one fact per line.
#include "tests/hosts/juce-host/MHostSide.h"

#include <cstdio>
#include <cstdlib>
#include <juce_audio_formats/juce_audio_formats.h>
#include <juce_audio_processors/juce_audio_processors.h>
#include <memory>
#include <pluginterfaces/vst2.x/aeffectx.h>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr double kRate = 48000;
constexpr int kBlock = 512;

using Plugin = std::unique_ptr<juce::AudioPluginInstance>;
using Sound = juce::AudioBuffer<float>;

[[noreturn]] void Fail(const juce::String& what) {
    std::fprintf(stderr, "juce-host: %s\n", what.toRawUTF8());
    std::exit(1);
}

Plugin Load(const juce::String& path) {
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

/// The same on a thread that ends when the plug-in is there, as the loaders of projects do.
Plugin LoadElsewhere(const juce::String& path, std::thread::id& loader) {
    auto* const messages = juce::MessageManager::getInstance();
    Plugin plugin;
    std::thread thread([&] {
        messages->setCurrentThreadAsMessageThread();
        plugin = Load(path);
        loader = std::this_thread::get_id();
    });
    thread.join();
    messages->setCurrentThreadAsMessageThread();
    return plugin;
}

AEffect& EffectOf(juce::AudioPluginInstance& plugin) {
    struct Visitor : juce::ExtensionsVisitor {
        AEffect* effect = nullptr;
        void visitVSTClient(const VSTClient& client) override {
            effect = reinterpret_cast<AEffect*>(client.getAEffectPtr());
        }
    } visitor;
    plugin.getExtensions(visitor);
    if (visitor.effect == nullptr) Fail("this is no VST 2.4 plug-in");
    return *visitor.effect;
}

juce::AudioProcessorParameter& Find(juce::AudioPluginInstance& plugin, const juce::String& name) {
    for (auto* parameter : plugin.getParameters()) {
        if (parameter->getName(64) == name) return *parameter;
    }
    Fail("no parameter " + name);
}

void Set(juce::AudioPluginInstance& plugin, const juce::StringArray& settings) {
    for (const juce::String& setting : settings) {
        auto& parameter = Find(plugin, setting.upToLastOccurrenceOf("=", false, false));
        parameter.setValue(setting.fromLastOccurrenceOf("=", false, false).getFloatValue());
    }
}

Sound Read(const juce::File& file) {
    juce::WavAudioFormat format;
    std::unique_ptr<juce::AudioFormatReader> reader(
        format.createReaderFor(new juce::FileInputStream(file), true));
    if (reader == nullptr) Fail("cannot read " + file.getFullPathName());
    Sound sound(static_cast<int>(reader->numChannels), static_cast<int>(reader->lengthInSamples));
    reader->read(&sound, 0, sound.getNumSamples(), 0, true, true);
    return sound;
}

void Write(const Sound& sound, const juce::File& file) {
    file.deleteFile();
    juce::WavAudioFormat format;
    std::unique_ptr<juce::AudioFormatWriter> writer(format.createWriterFor(
        new juce::FileOutputStream(file), kRate, sound.getNumChannels(), 32, {}, 0));
    if (writer == nullptr || !writer->writeFromAudioSampleBuffer(sound, 0, sound.getNumSamples()))
        Fail("cannot write " + file.getFullPathName());
}

/// The sound through a plug-in that is prepared. When it `automates`, Dry falls in the second half,
/// by as much in every block. A note that does nothing comes with each block.
Sound Play(juce::AudioPluginInstance& plugin, Sound sound, double tempo, bool automates) {
    MSong song(tempo, kRate);
    plugin.setPlayHead(&song);
    const int blocks = sound.getNumSamples() / kBlock;
    for (int block = 0; block < blocks; ++block) {
        song.Seek(block * kBlock);
        if (automates && block >= blocks / 2)
            Find(plugin, "Dry").setValue(1 - static_cast<float>(block) / blocks);
        Sound piece(sound.getArrayOfWritePointers(), sound.getNumChannels(), block * kBlock,
                    kBlock);
        juce::MidiBuffer notes;
        notes.addEvent(juce::MidiMessage::noteOff(1, 60), 0);
        plugin.processBlock(piece, notes);
    }
    plugin.setPlayHead(nullptr);
    return sound;
}

Sound Render(juce::AudioPluginInstance& plugin, const Sound& input, double tempo, bool automates) {
    plugin.prepareToPlay(kRate, kBlock);
    Sound sound = Play(plugin, input, tempo, automates);
    plugin.releaseResources();
    return sound;
}

/// Reads and writes parameters that do not exist; tells what the plug-in answers.
void Trespass(juce::AudioPluginInstance& plugin) {
    AEffect& effect = EffectOf(plugin);
    for (const int index : {-1, effect.numParams, 99999}) {
        char text[256] = "";
        for (const float position : {1.0f, 0.0f, 1.0f})
            effect.setParameter(&effect, index, position);
        effect.dispatcher(&effect, effGetParamName, index, 0, text, 0);
        std::printf("parameter %d: %g \"%s\"\n", index,
                    static_cast<double>(effect.getParameter(&effect, index)), text);
    }
}

/// The first channel of `input` through the plug-in as mono, in place, with all the outputs that
/// the plug-in says it has.
Sound RenderMono(juce::AudioPluginInstance& plugin, const Sound& input) {
    juce::AudioProcessor::BusesLayout mono;
    mono.inputBuses.add(juce::AudioChannelSet::mono());
    mono.outputBuses.add(juce::AudioChannelSet::mono());
    if (!plugin.setBusesLayout(mono)) Fail("the host does not allow mono");
    plugin.prepareToPlay(kRate, kBlock);
    AEffect& effect = EffectOf(plugin);
    std::printf("mono: %d inputs, %d outputs\n", effect.numInputs, effect.numOutputs);
    Sound sound(juce::jmax(effect.numInputs, effect.numOutputs), input.getNumSamples());
    for (int channel = 0; channel < sound.getNumChannels(); ++channel)
        sound.copyFrom(channel, 0, input, channel % input.getNumChannels(), 0,
                       input.getNumSamples());
    for (int frame = 0; frame + kBlock <= sound.getNumSamples(); frame += kBlock) {
        Sound piece(sound.getArrayOfWritePointers(), sound.getNumChannels(), frame, kBlock);
        std::vector<float*> channels(piece.getArrayOfWritePointers(),
                                     piece.getArrayOfWritePointers() + piece.getNumChannels());
        effect.processReplacing(&effect, channels.data(), channels.data(), kBlock);
    }
    plugin.releaseResources();
    sound.setSize(effect.numOutputs, sound.getNumSamples(), true);
    return sound;
}

/// Loads a state into a running plug-in, tells what the host hears of that, and plays.
Sound RenderLoaded(juce::AudioPluginInstance& plugin, const juce::MemoryBlock& state,
                   const Sound& input, double tempo) {
    MChangeEar ear;
    plugin.addListener(&ear);
    plugin.prepareToPlay(kRate, kBlock);
    juce::VSTPluginFormat::setChunkData(&plugin, state.getData(), static_cast<int>(state.getSize()),
                                        false);
    for (int i = 0; i < 100 && ear.Displays() == 0; ++i)
        juce::MessageManager::getInstance()->runDispatchLoopUntil(10);
    std::printf("latency of a state: %d\ndisplay: %s\n", ear.Latency(),
                ear.Displays() > 0 ? "refreshed" : "left");
    Sound sound = Play(plugin, input, tempo, false);
    plugin.releaseResources();
    plugin.removeListener(&ear);
    return sound;
}

/// Three steps to the next preset while blocks run: the third of the list has latency.
void StepPresets(juce::AudioPluginInstance& plugin) {
    juce::AudioProcessorParameter& next = Find(plugin, "Preset next");
    const auto play = [&] { Play(plugin, Sound(2, kBlock), 120, false); };
    for (const float position : {0.0f, 1.0f, 0.0f, 1.0f, 0.0f, 1.0f}) {
        next.setValue(position);
        play();
    }
    for (int i = 0; i < 500 && EffectOf(plugin).initialDelay == 0; ++i) {
        juce::Thread::sleep(10);
        play();
    }
    play();
}

/// Who is told of presets when the thread that made the plug-in has ended, and the one that plays
/// may well have got the identifier of that one.
void TellOfSteps(const juce::String& path) {
    std::thread::id loader;
    const Plugin plugin = LoadElsewhere(path, loader);
    MChangeEar ear;
    plugin->addListener(&ear);
    plugin->prepareToPlay(kRate, kBlock);
    std::thread audio([&] {
        ear.EnterAudio();
        std::printf("audio thread: %s\n", std::this_thread::get_id() == loader
                                              ? "has the loader's identifier"
                                              : "has an identifier of its own");
        StepPresets(*plugin);
        ear.LeaveAudio();
    });
    audio.join();
    plugin->getParameters()[0]->getCurrentValueAsText();  // the host's own thread is back
    std::printf("latency of a preset: %d\ntold on the audio thread: %d\n", ear.Latency(),
                ear.HeardOnAudio());
    plugin->releaseResources();
    plugin->removeListener(&ear);
}

void TellIdentity(juce::AudioPluginInstance& plugin) {
    const juce::PluginDescription description = plugin.getPluginDescription();
    std::printf("name: %s\nvendor: %s\nidentifier: %s\nparameters: %d\nlatency: %d\n",
                plugin.getName().toRawUTF8(), description.manufacturerName.toRawUTF8(),
                juce::String::toHexString(static_cast<int>(EffectOf(plugin).uniqueID)).toRawUTF8(),
                plugin.getParameters().size(), plugin.getLatencySamples());
    std::printf("tail: %s\n", plugin.getTailLengthSeconds() > 1 ? "waited for" : "cut off");
    for (const bool isInput : {true, false}) {
        juce::StringArray buses;
        for (int i = 0; i < plugin.getBusCount(isInput); ++i)
            buses.add(plugin.getChannelLayoutOfBus(isInput, i).getDescription());
        std::printf("%s: %s\n", isInput ? "inputs" : "outputs",
                    buses.joinIntoString(", ").toRawUTF8());
    }
}

/// What the host has been asked to play, and where the sounds go.
struct MTask {
    juce::String plugin;
    Sound input;
    juce::File folder;
    double tempo = 0;
    juce::MemoryBlock bands;
    juce::StringArray settings;
};

void PlayAll(const MTask& task) {
    juce::MemoryBlock state;
    const auto write = [&](const Sound& sound, const char* name) {
        Write(sound, task.folder.getChildFile(juce::String(name) + ".wav"));
    };
    {
        const Plugin plugin = Load(task.plugin);
        TellIdentity(*plugin);
        Set(*plugin, task.settings);
        plugin->getStateInformation(state);
        write(Render(*plugin, task.input, task.tempo, false), "plain");
        write(Render(*plugin, task.input, task.tempo, true), "automated");
    }
    {
        const Plugin plugin = Load(task.plugin);
        Set(*plugin, task.settings);
        Trespass(*plugin);
        write(Render(*plugin, task.input, task.tempo, false), "trespassed");
    }
    {
        const Plugin plugin = Load(task.plugin);
        Set(*plugin, task.settings);
        write(RenderMono(*plugin, task.input), "mono");
    }
    const Plugin restored = Load(task.plugin);
    restored->setStateInformation(state.getData(), static_cast<int>(state.getSize()));
    write(Render(*restored, task.input, task.tempo, false), "restored");
    write(RenderLoaded(*restored, task.bands, task.input, task.tempo), "loaded");
    TellOfSteps(task.plugin);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 6) {
        std::printf(
            "Usage: juce-host PLUGIN IN.wav OUT-FOLDER TEMPO STATE [NAME=POSITION]...\n"
            "Sets the named parameters (0..1) and plays the input: as it is (plain.wav), with an\n"
            "automated Dry (automated.wav), after writes to parameters that do not exist\n"
            "(trespassed.wav), in mono (mono.wav), through a new instance with the saved state\n"
            "(restored.wav), and with STATE, which that one loads while it runs (loaded.wav).\n"
            "Then steps through presets in an instance whose maker's thread is gone.\n");
        return argc == 2 && juce::String(argv[1]) == "--help" ? 0 : 2;
    }
    const juce::ScopedJuceInitialiser_GUI gui;
    const juce::File here = juce::File::getCurrentWorkingDirectory();
    MTask task = {here.getChildFile(argv[1]).getFullPathName(),
                  Read(here.getChildFile(argv[2])),
                  here.getChildFile(argv[3]),
                  juce::String(argv[4]).getDoubleValue(),
                  {},
                  juce::StringArray(argv + 6, argc - 6)};
    if (!here.getChildFile(argv[5]).loadFileAsData(task.bands)) Fail("cannot read the state");
    PlayAll(task);
    return 0;
}
