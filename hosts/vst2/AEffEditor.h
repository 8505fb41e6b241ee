// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "hosts/vst2/VstTypes.h"

namespace Vst2 {

/// What a host asks of a plug-in's editor. Nothing thrown may leave an operation.
class AEffEditor {
public:
    AEffEditor() = default;
    AEffEditor(const AEffEditor&) = delete;
    AEffEditor& operator=(const AEffEditor&) = delete;
    virtual ~AEffEditor() = default;

    /// Hands out the address of the editor's rectangle; false, and no address, for a failure.
    /// [main]
    virtual bool getRect(ERect** rectangle) = 0;
    /// Opens the editor inside the host's window. [main]
    virtual bool open(void* parentWindow) = 0;
    virtual void close() = 0;
    virtual void idle() = 0;
    /// Whether the editor has used the key. [main]
    virtual bool onKeyDown(const VstKeyCode& key) = 0;
    virtual bool onKeyUp(const VstKeyCode& key) = 0;
};

}  // namespace Vst2
