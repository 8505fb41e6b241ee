// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/MEffectCommands.h"
#include "plugin/MTransport.h"

#include <cstdint>
#include <functional>
#include <vector>

/// An effect behind the numbered command entry that does as a test says and notes what it was told.
///
/// It delays by whole samples and multiplies, both exactly; its records are listed in `Record`. One
/// effect at a time; what it noted stays readable after it is gone, until the next `Reset`.
class ProbeEffect {
public:
    /// The records, in their order.
    enum Record {
        Delay,  ///< "delay", "Delay", seconds, 0 to 1, default 0
        Level,  ///< "level", "Level", linear gain, 0 to 10, default 1
        Hold,   ///< "hold", "Hold", a switch: while on, the output is 0.25 for ever
        kRecords
    };

    /// What goes wrong, and when.
    struct Script {
        bool failsToCreate = false;
        int prepareResult = 0;
        std::int64_t notFiniteFrom = -1;  ///< frame from which on the output is NaN; -1 for never
        int createsAtMost = 1 << 30;      ///< effects that are handed out before there are no more
        std::function<void()> inBlock =
            nullptr;  ///< runs inside each block, before the effect's work
    };

    /// What the effect was told.
    struct Log {
        int channels = 0;
        int sampleRate = 0;
        int created = 0;
        int destroyed = 0;
        void* context = nullptr;
        MEffectHostCallback callback = nullptr;
        std::vector<std::int64_t> changed;  ///< indices of command 4
        std::vector<int> blocks;            ///< frames of each block
        std::vector<MTransport> transports;
    };

    /// Starts over with `script`; returns the entry that hands out probes. [setup]
    static MEffectEntry Reset(const Script& script);
    static MEffectEntry Reset() { return Reset(Script()); }
    static const Log& Noted();
};
