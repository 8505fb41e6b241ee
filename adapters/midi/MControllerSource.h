// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/MArchive.h"

/// What a controller assignment listens to.
struct MControllerSource {
    /// The numbers are stored.
    enum class Kind { Controller = 0, PitchBend = 1, ChannelAftertouch = 2, PolyAftertouch = 3 };

    Kind kind = Kind::Controller;
    int number = 0;  ///< 0..127: the controller, or the note of a poly aftertouch
    /// Controllers 0..31 alone: together with the one 32 further on they make 14 bits.
    bool isHighResolution = false;
    int channel = 0;  ///< 1..16, 0 for all of them

    bool operator==(const MControllerSource&) const = default;

    /// With everything out of range put to its default. [any]
    MControllerSource Corrected() const noexcept;
    /// Keys of the node: "Kind", "Number", "HighResolution", "Channel". [main]
    void Store(MXMLNode node, const MArchive& archive);
};
