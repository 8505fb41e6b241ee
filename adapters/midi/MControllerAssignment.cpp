// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/midi/MControllerAssignment.h"

MControllerAssignment MControllerAssignment::Corrected() const {
    MControllerAssignment good = *this;
    good.source = source.Corrected();
    MControllerMapping& map = good.mapping;
    if (!(map.value >= 0 && map.value <= 1)) map.value = MControllerMapping{}.value;
    if (!(map.maxValue >= 0 && map.maxValue <= 1)) map.maxValue = MControllerMapping{}.maxValue;
    if (map.range < MControllerRange::Continuous || map.range > MControllerRange::Relative) {
        map.range = MControllerRange::Continuous;
    }
    const bool isSevenBitController =
        good.source.kind == MControllerSource::Kind::Controller && !good.source.isHighResolution;
    if (map.range == MControllerRange::Relative && !isSevenBitController) {
        map.range = MControllerRange::Continuous;
    }
    return good;
}

void MControllerAssignment::Store(MXMLNode node, const MArchive& archive) {
    archive.Switch(node, "Enabled", isEnabled);
    source.Store(node, archive);
    target.Store(node, archive);
    archive.Switch(node, "Invert", mapping.isInverted);
    archive.Number(node, "Value", mapping.value);
    archive.Number(node, "MaxValue", mapping.maxValue);
    int range = static_cast<int>(mapping.range);
    archive.Integer(node, "Range", range);
    mapping.range = static_cast<MControllerRange>(range);
    archive.Switch(node, "SoftTakeover", mapping.hasSoftTakeover);
    *this = Corrected();
}
