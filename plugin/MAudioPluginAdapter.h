// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

/// What a host binding offers the plug-in object. The order of the virtual operations is part of
/// the interface: new ones are added at the end.
class MAudioPluginAdapter {
public:
    MAudioPluginAdapter() = default;
    MAudioPluginAdapter(const MAudioPluginAdapter&) = delete;
    MAudioPluginAdapter& operator=(const MAudioPluginAdapter&) = delete;

    virtual ~MAudioPluginAdapter() = default;
    /// Tells the host that the plug-in's bypass has been switched. [main]
    virtual void SendBypassAutomation(bool on) = 0;
    /// Sends a MIDI message of up to four bytes, `deltaFrames` samples into the present block.
    /// [any]
    virtual void GenerateMIDIEvent(int deltaFrames, const std::array<std::uint8_t, 4>& data) = 0;
    /// Tells the host that the plug-in's latency has changed. Never called on the audio thread.
    /// [main]
    virtual void ReportLatency() = 0;
    /// Asks the host for an editor of that size, in pixels. [main]
    virtual void ChangeEditorSize(int width, int height) = 0;
    /// Tells the host that the plug-in has moved a parameter to position `x` of 0..1; a binding
    /// whose host takes no automation leaves it at that. [any]
    virtual void SendParameterAutomation(std::uint32_t identifier, double x);
    /// Tells the host that any number of parameters have other values, or another switch between
    /// enabled and disabled, than it knows of. [main]
    virtual void ReportParameterChanges();
};
