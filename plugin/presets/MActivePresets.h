// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MMutex.h"
#include "plugin/MArchive.h"

#include <array>
#include <string>
#include <string_view>

class MAudioPlugin;

/// Eight states of one plug-in, A to H, of which one is heard: the others wait to be compared with
/// it. They belong to the project and travel with the plug-in's state. A slot that was never used
/// starts as a copy of what is heard. Any number of threads may use one object; operations throw
/// MException "Index out of range." for a slot that is none.
class MActivePresets {
public:
    static constexpr int kSlots = 8;
    /// The child element of the plug-in's state.
    static constexpr std::string_view kElement = "ActivePresets";
    /// Its attribute in what is loaded as one of the slots: the slots are left alone.
    static constexpr std::string_view kKeep = "Keep";

    /// The slot that is heard, 0 to 7. [any]
    int Current() const;
    /// Whether a slot holds anything, the current one included. [any]
    bool IsUsed(int slot) const;

    /// Keeps what is heard in its slot and loads another. [main]
    void Switch(MAudioPlugin& plugin, int slot);
    /// Goes back to the slot that was heard before, and forth again. [main]
    void Compare(MAudioPlugin& plugin);
    /// Makes `to` hold the same as `from`; what is heard changes with it when it is `to`. [main]
    void Copy(MAudioPlugin& plugin, int from, int to);

    /// The slots that are not heard, and which one is. What is heard is the rest of the state.
    /// [main]
    void Store(MXMLNode node, const MArchive& archive);

private:
    using Slots = std::array<std::string, kSlots>;  // XML text; empty: never used

    void Write(MXMLNode element) const;
    void Read(const MXMLNode& element);

    mutable MMutex mutex_;  // over the members; never held while the plug-in saves or loads
    MMutex switching_;      // held throughout a switch
    Slots slots_;           // the current one's is out of date
    int current_ = 0;
    int previous_ = 1;
};
