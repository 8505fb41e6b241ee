// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/midi/MMIDIControl.h"

#include "core/MFailureReporter.h"
#include "core/MFormat.h"
#include "plugin/MAudioPlugin.h"

#include <algorithm>

namespace {

/// The assignment to the parameter, or else the first that is not in use; null when there is none.
template <class Assignments>
auto* PlaceFor(Assignments& assignments, const MMIDITarget& target) {
    const auto own = std::find_if(assignments.begin(), assignments.end(), [&](const auto& each) {
        return each.target.parameter == target.parameter;
    });
    if (own != assignments.end()) return &*own;
    const auto free = std::find_if(assignments.begin(), assignments.end(), [](const auto& each) {
        return !each.isEnabled && each.target.parameter.empty();
    });
    return free != assignments.end() ? &*free : nullptr;
}

}  // namespace

MMIDIControl::MMIDIControl(MAudioPlugin& plugin, MPresetStepper* presets)
    : plugin_(plugin), router_(plugin, presets) {}

MMIDISettings MMIDIControl::Settings() const {
    const MLock lock(lock_);
    return settings_;
}

void MMIDIControl::SetSettings(const MMIDISettings& settings) {
    Change([&] {
        settings_ = settings;
        settings_.Correct();
        return true;
    });
}

void MMIDIControl::Store(MXMLNode node, const MArchive& archive) {
    Change([&] {
        settings_.Store(node, archive);
        return !archive.IsWriting();
    });
}

template <class Job>
bool MMIDIControl::Change(Job&& job) {
    std::vector<std::string> missing;
    {
        const MLock lock(lock_);
        if (!job()) return false;
        missing = Publish();
    }
    for (const std::string& parameter : missing) {
        MFailureReporter::Report(
            MFormat("A MIDI assignment does nothing: there is no parameter \"{0}\".", parameter));
    }
    return true;
}

/// Puts the settings into force; the result is what they name in vain for the first time.
std::vector<std::string> MMIDIControl::Publish() {
    std::vector<std::string> missing;
    const auto find = [&](const MMIDITarget& target) {
        const auto identifier = target.Find(plugin_);
        const bool isNews =
            !identifier && !target.parameter.empty() && reported_.insert(target.parameter).second;
        if (isNews) missing.push_back(target.parameter);
        return identifier;
    };
    routing_ = {};
    routing_.presetController = settings_.presetController;
    routing_.presetPrograms = settings_.presetPrograms;
    for (int place = 0; place < MMIDISettings::kAssignments; ++place) {
        const MControllerAssignment& controller = settings_.controllers[place];
        if (controller.isEnabled && settings_.areControllersEnabled) {
            if (const auto identifier = find(controller.target)) {
                routing_.controllers.Add(place,
                                         {*identifier, controller.source, controller.mapping});
            }
        }
        const MNoteAssignment& note = settings_.notes[place];
        if (note.isEnabled && settings_.areNoteControllersEnabled) {
            if (const auto identifier = find(note.target)) {
                routing_.notes.Add(place, {*identifier, note.mapping});
            }
        }
    }
    handOver_.Back() = routing_;
    handOver_.Publish();
    return missing;
}

bool MMIDIControl::AcceptLearned() {
    const auto learned = TakeLearned();
    if (!learned) return false;
    const MMIDITarget target = MMIDITarget::Of(plugin_, learned->identifier);
    return Change([&] {
        if (learned->isNote) {
            MNoteAssignment* place = PlaceFor(settings_.notes, target);
            if (place == nullptr) return false;
            place->isEnabled = true;
            place->target = target;
            place->mapping.note = learned->note;
            place->mapping.channel = learned->channel;
        } else {
            MControllerAssignment* place = PlaceFor(settings_.controllers, target);
            if (place == nullptr) return false;
            place->isEnabled = true;
            place->target = target;
            place->source = learned->source;
        }
        settings_.Correct();
        return true;
    });
}

void MMIDIControl::ReportMoved() {
    const std::uint64_t moved = router_.TakeMoved();
    if (moved == 0) return;
    std::set<std::uint32_t> identifiers;
    const auto collect = [&](const auto& table, int firstBit) {
        for (int i = 0; i < table.count; ++i) {
            const int place = table.places[i];
            const bool hasMoved = (moved >> (firstBit + place) & 1) != 0;
            if (hasMoved) identifiers.insert(table.routes[place].identifier);
        }
    };
    {
        const MLock lock(lock_);
        collect(routing_.controllers, 0);
        collect(routing_.notes, MMIDIRouter::kFirstNoteBit);
    }
    for (const std::uint32_t identifier : identifiers) {
        plugin_.SendHostAutomation(identifier, plugin_.GetParameter(identifier));
    }
}

void MMIDIControl::Receive(int deltaFrames, const std::array<std::uint8_t, 4>& data) noexcept {
    ClearQueueWhenAsked();
    queue_.Add(deltaFrames, MMIDIMessage::Parse(data));
}

void MMIDIControl::BeginBlock(int count) noexcept {
    if (handOver_.Adopt()) router_.Adopt(handOver_.Front());
    ClearQueueWhenAsked();
    queue_.BeginBlock(count);
}

void MMIDIControl::ApplyUntil(int position, MMIDIListener* listener) noexcept {
    while (const MMIDIMessage* message = queue_.Take(position)) {
        learn_.Offer(*message);
        router_.Apply(*message, listener);
    }
}

void MMIDIControl::Reset() noexcept {
    isQueueStale_.store(true, std::memory_order_relaxed);
    router_.Reset();
}

void MMIDIControl::ClearQueueWhenAsked() noexcept {
    const bool isStale = isQueueStale_.load(std::memory_order_relaxed) &&
                         isQueueStale_.exchange(false, std::memory_order_relaxed);
    if (isStale) queue_.Clear();
}
