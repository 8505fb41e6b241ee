// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/presets/MActivePresets.h"

#include "core/MException.h"
#include "plugin/presets/MPluginPresetContent.h"

#include <utility>

namespace {

constexpr std::string_view kCurrent = "CurrentPresetIndex";
constexpr std::string_view kSlot = "Preset";
constexpr std::string_view kIndex = "Index";

bool IsSlot(int slot) { return slot >= 0 && slot < MActivePresets::kSlots; }

std::size_t Checked(int slot) {
    if (!IsSlot(slot)) throw MException("Index out of range.");
    return static_cast<std::size_t>(slot);
}

}  // namespace

int MActivePresets::Current() const {
    const MLock lock(mutex_);
    return current_;
}

bool MActivePresets::IsUsed(int slot) const {
    const MLock lock(mutex_);
    return !slots_[Checked(slot)].empty() || slot == current_;
}

void MActivePresets::Switch(MAudioPlugin& plugin, int slot) {
    const std::size_t wanted = Checked(slot);
    const MLock switching(switching_);
    if (slot == Current()) return;
    std::string heard = MPluginPresetContent::Save(plugin);
    std::string text;
    {
        const MLock lock(mutex_);
        text = slots_[wanted];
    }
    if (!text.empty()) MPluginPresetContent::Restore(plugin, text);
    const MLock lock(mutex_);
    slots_[Checked(current_)] = std::move(heard);
    previous_ = std::exchange(current_, slot);
}

void MActivePresets::Compare(MAudioPlugin& plugin) {
    int slot = 0;
    {
        const MLock lock(mutex_);
        slot = previous_;
    }
    Switch(plugin, slot);
}

void MActivePresets::Copy(MAudioPlugin& plugin, int from, int to) {
    const std::size_t source = Checked(from), target = Checked(to);
    const MLock switching(switching_);
    const int current = Current();
    std::string text;
    if (from == current) {
        text = MPluginPresetContent::Save(plugin);
    } else {
        const MLock lock(mutex_);
        text = slots_[source];
    }
    if (to == current && !text.empty()) MPluginPresetContent::Restore(plugin, text);
    const MLock lock(mutex_);
    slots_[target] = std::move(text);
}

void MActivePresets::Store(MXMLNode node, const MArchive& archive) {
    MXMLNode element = archive.Child(node, kElement);
    if (element.Attribute(kKeep)) return;
    const MLock lock(mutex_);
    if (archive.IsWriting()) {
        Write(element);
    } else if (element || archive.StartsFromDefaults()) {
        Read(element);
    }
}

void MActivePresets::Write(MXMLNode element) const {
    element.SetAttribute(kCurrent, std::to_string(current_));
    for (int slot = 0; slot < kSlots; ++slot) {
        const std::string& text = slots_[Checked(slot)];
        if (slot == current_ || text.empty()) continue;
        MXMLNode preset = element.AddChild(kSlot);
        preset.SetAttribute(kIndex, std::to_string(slot));
        preset.AddCopy(MXMLTree::Parse(text).Root());
    }
}

void MActivePresets::Read(const MXMLNode& element) {
    const MArchive archive(MArchive::Direction::Read);
    slots_ = {};
    current_ = 0;
    archive.Integer(element, kCurrent, current_);
    if (!IsSlot(current_)) current_ = 0;
    previous_ = current_ == 0 ? 1 : 0;
    for (const MXMLNode& preset : element.Children()) {
        int slot = -1;
        archive.Integer(preset, kIndex, slot);
        const std::vector<MXMLNode> contents = preset.Children();
        const bool isUsable = preset.Name() == kSlot && IsSlot(slot) && !contents.empty();
        if (isUsable) slots_[Checked(slot)] = MXMLTree::CopyOf(contents.front()).Write();
    }
}
