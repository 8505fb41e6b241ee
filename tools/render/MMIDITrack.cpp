// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MMIDITrack.h"

#include "tools/render/MMIDIBytes.h"
#include "tools/render/MRenderFailure.h"

namespace {

bool IsStatus(std::uint8_t byte) { return byte >= 0x80; }

/// Reads one track event by event.
class Track {
public:
    Track(std::string_view bytes, std::vector<MMIDITrackEvent>& events)
        : bytes_(bytes), events_(events) {}

    void Read() {
        while (!bytes_.IsAtEnd() && !isOver_) {
            tick_ += bytes_.Length();
            ReadEvent();
        }
    }

private:
    void ReadEvent() {
        const std::uint8_t status = IsStatus(bytes_.Peek()) ? bytes_.Byte() : running_;
        if (status == 0) FailFile("a track has a value without an event that it belongs to");
        running_ = 0;  // only events of a channel may leave their status out
        if (status < 0xF0) {
            ReadMessage(status);
        } else if (status == 0xFF) {
            ReadMeta();
        } else if (status == 0xF0 || status == 0xF7) {
            bytes_.Take(bytes_.Length());
        } else {
            FailFile("a track has an event that no file may have");
        }
    }

    void ReadMessage(std::uint8_t status) {
        const bool hasOneValue = (status & 0xE0) == 0xC0;
        const std::uint8_t first = bytes_.Byte();
        const std::uint8_t second = hasOneValue ? std::uint8_t{0} : bytes_.Byte();
        if (IsStatus(first) || IsStatus(second))
            FailFile("a track has an event without its values");
        running_ = status;
        events_.push_back({tick_, 0, {status, first, second, 0}});
    }

    void ReadMeta() {
        constexpr int kTempo = 0x51;
        constexpr int kEndOfTrack = 0x2F;
        const std::uint8_t type = bytes_.Byte();
        MMIDIBytes content(bytes_.Take(bytes_.Length()));
        if (type == kEndOfTrack) isOver_ = true;
        if (type != kTempo) return;
        const auto tempo = static_cast<int>(content.Number(3));
        if (tempo == 0) FailFile("a tempo is infinitely fast");
        events_.push_back({tick_, tempo, {}});
    }

    MMIDIBytes bytes_;
    std::vector<MMIDITrackEvent>& events_;
    std::int64_t tick_ = 0;
    std::uint8_t running_ = 0;  // status of the event before, when the next may do without
    bool isOver_ = false;
};

}  // namespace

void MReadMIDITrack(std::string_view bytes, std::vector<MMIDITrackEvent>& events) {
    Track(bytes, events).Read();
}
