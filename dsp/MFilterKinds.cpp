// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MFilterKinds.h"

#include "core/MFormat.h"

namespace {

constexpr MFilterKindInfo kKinds[] = {
    {MFilterKind::Peak, "Peak", "Peak", 0, BiquadType::Peak},
    {MFilterKind::LowShelf, "LowShelf", "Low-shelf", 0, BiquadType::LowShelf},
    {MFilterKind::HighShelf, "HighShelf", "High-shelf", 0, BiquadType::HighShelf},
    {MFilterKind::LowPass, "LowPass", "Low-pass", 12, BiquadType::LowPass},
    {MFilterKind::HighPass, "HighPass", "High-pass", 12, BiquadType::HighPass},
    {MFilterKind::LowPass6, "LowPass6", "Low-pass", 6, std::nullopt},
    {MFilterKind::HighPass6, "HighPass6", "High-pass", 6, std::nullopt},
    {MFilterKind::BandPass, "BandPass", "Band-pass", 0, BiquadType::BandPass},
};

}  // namespace

std::span<const MFilterKindInfo> MFilterKinds::All() noexcept { return kKinds; }

const MFilterKindInfo* MFilterKinds::Find(std::string_view key) noexcept {
    for (const MFilterKindInfo& kind : kKinds) {
        if (kind.key == key) return &kind;
    }
    return nullptr;
}

std::string MFilterKinds::DisplayText(const MFilterKindInfo& kind, int order,
                                      std::string_view suffix) {
    if (kind.slopePerOrder == 0) return std::string(kind.displayName);
    return MFormat("{0}{2}({1} dB/oct)", kind.displayName, kind.slopePerOrder * order, suffix);
}
