// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "hosts/vst2/MAudioPluginVSTAdapter.h"
#include "plugin/MAudioPluginEditor.h"

namespace Vst2 {

/// The plug-in's editor in a VST 2.4 host. The editor object is made when the host first asks for
/// it, never while it scans.
class MAudioPluginVSTAdapter::MEditor : public AEffEditor {
public:
    /// The plug-in outlives this. [setup]
    explicit MEditor(MAudioPlugin& plugin) noexcept : plugin_(plugin) {}

    /// One rectangle serves every instance: hosts copy it at once. [main]
    bool getRect(ERect** rectangle) override;
    bool open(void* parentWindow) override;
    void close() override;
    void idle() override;
    bool onKeyDown(const VstKeyCode& key) override;
    bool onKeyUp(const VstKeyCode& key) override;

private:
    MAudioPlugin& plugin_;
    MAudioPluginEditor* editor_ = nullptr;  // the plug-in's; null until it was asked for
};

}  // namespace Vst2
