// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/midi/MControllerSource.h"

MControllerSource MControllerSource::Corrected() const noexcept {
    MControllerSource good = *this;
    if (kind < Kind::Controller || kind > Kind::PolyAftertouch) good.kind = Kind::Controller;
    if (number < 0 || number > 127) good.number = 0;
    if (channel < 0 || channel > 16) good.channel = 0;
    if (good.kind != Kind::Controller || good.number > 31) good.isHighResolution = false;
    return good;
}

void MControllerSource::Store(MXMLNode node, const MArchive& archive) {
    int kindNumber = static_cast<int>(kind);
    archive.Integer(node, "Kind", kindNumber);
    archive.Integer(node, "Number", number);
    archive.Switch(node, "HighResolution", isHighResolution);
    archive.Integer(node, "Channel", channel);
    kind = static_cast<Kind>(kindNumber);
}
