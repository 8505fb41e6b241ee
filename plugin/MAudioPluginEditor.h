// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The plug-in's editor as a host binding sees it. It outlives its window, which the host opens and
/// closes as often as it likes.
class MAudioPluginEditor {
public:
    /// A key as hosts describe it.
    struct Key {
        int character;   ///< the letter typed, 0 for none
        int virtualKey;  ///< the number of a key that types no letter, 0 for none
        int modifiers;   ///< bits: 1 shift, 2 alternate, 4 command, 8 control
    };

    MAudioPluginEditor() = default;
    MAudioPluginEditor(const MAudioPluginEditor&) = delete;
    MAudioPluginEditor& operator=(const MAudioPluginEditor&) = delete;
    virtual ~MAudioPluginEditor() = default;

    /// In pixels; known before the window is. [main]
    virtual int Width() const = 0;
    virtual int Height() const = 0;

    /// Shows the editor's window as a child of `parentWindow`, in the window system's own terms.
    /// False when there is none to be had. [main]
    virtual bool Open(void* parentWindow) = 0;
    /// Takes the window away. [main]
    virtual void Close() = 0;
    /// Gives the window system its turn; hosts call it many times a second. [main]
    virtual void Idle() = 0;
    /// Whether the editor has used the key. [main]
    virtual bool KeyDown(const Key& key) = 0;
    virtual bool KeyUp(const Key& key) = 0;
};
