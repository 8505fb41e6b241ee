// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MMIDIFile.h"

#include "core/MFormat.h"
#include "tools/render/MFileContents.h"
#include "tools/render/MMIDIBytes.h"
#include "tools/render/MMIDITrack.h"
#include "tools/render/MRenderFailure.h"

#include <algorithm>
#include <string>

namespace {

/// How long a tick is.
struct Clock {
    int ticksPerQuarter = 0;    // 0 when ticks have a length of their own
    double secondsPerTick = 0;  // then

    double SecondsPerTick(int tempo) const {
        return ticksPerQuarter > 0 ? tempo * 1e-6 / ticksPerQuarter : secondsPerTick;
    }
};

Clock ReadClock(std::uint32_t division) {
    if ((division & 0x8000U) == 0) {
        if (division == 0) FailFile("a quarter note has no length");
        return {static_cast<int>(division), 0};
    }
    const auto frames = static_cast<int>(256 - (division >> 8));
    const auto ticks = static_cast<int>(division & 0xFFU);
    const bool isKnown = frames == 24 || frames == 25 || frames == 29 || frames == 30;
    if (!isKnown || ticks == 0) FailFile("its ticks have no length");
    const double framesPerSecond = frames == 29 ? 30000 / 1001.0 : frames;
    return {0, 1 / (framesPerSecond * ticks)};
}

/// Replaces ticks by seconds; `events` are in their order.
std::vector<MMIDIFileEvent> TimedBy(const Clock& clock,
                                    const std::vector<MMIDITrackEvent>& events) {
    constexpr int kUsualTempo = 500000;  // 120 quarter notes a minute
    std::vector<MMIDIFileEvent> timed;
    double secondsPerTick = clock.SecondsPerTick(kUsualTempo);
    double startSeconds = 0;  // of the present tempo
    std::int64_t startTick = 0;
    for (const MMIDITrackEvent& event : events) {
        const double seconds =
            startSeconds + static_cast<double>(event.tick - startTick) * secondsPerTick;
        if (event.tempo == 0) {
            timed.push_back({seconds, event.data});
            continue;
        }
        startSeconds = seconds;
        startTick = event.tick;
        secondsPerTick = clock.SecondsPerTick(event.tempo);
    }
    return timed;
}

}  // namespace

std::vector<MMIDIFileEvent> MReadMIDI(std::string_view bytes) {
    MMIDIBytes file(bytes);
    if (!bytes.starts_with("MThd")) FailFile("it is no MIDI file");
    file.Take(4);
    MMIDIBytes header(file.Take(file.Number(4)));
    const std::uint32_t format = header.Number(2);
    std::uint32_t tracks = header.Number(2);
    const Clock clock = ReadClock(header.Number(2));
    if (format > 1) FailFile("it holds songs that do not belong together (format 2)");

    std::vector<MMIDITrackEvent> events;
    while (tracks > 0) {
        const std::string_view kind = file.Take(4);
        const std::string_view chunk = file.Take(file.Number(4));
        if (kind != "MTrk") continue;  // a later version's
        MReadMIDITrack(chunk, events);
        --tracks;
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const MMIDITrackEvent& left, const MMIDITrackEvent& right) {
                         return left.tick < right.tick;
                     });
    return TimedBy(clock, events);
}

std::vector<MMIDIFileEvent> MReadMIDIFile(const std::filesystem::path& path) {
    const std::string contents = MReadFileContents(path);
    try {
        return MReadMIDI(contents);
    } catch (const MRenderFailure& failure) {
        FailFile(MFormat("cannot use {0}: {1}", path.string(), failure.Text()));
    }
}
