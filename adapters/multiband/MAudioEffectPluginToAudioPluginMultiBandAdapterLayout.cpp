// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"
#include "adapters/multiband/MBandLayoutRecord.h"

#include <algorithm>
#include <cmath>
#include <span>

// Under the preparing and the change lock. When effects cannot follow, layout and options stay what
// is heard.
template <class Change>
void MAudioEffectPluginToAudioPluginMultiBandAdapter::ChangeOrRestore(Change&& change) {
    const MBandLayout layout = layout_;
    const MBandOptions options = options_;
    try {
        {
            const MLock lock(settingsLock_);
            change();
        }
        ApplyGlobalChange(true);
    } catch (...) {
        const MLock lock(settingsLock_);
        layout_ = layout;
        options_ = options;
        throw;
    }
}

template <class Change>
void MAudioEffectPluginToAudioPluginMultiBandAdapter::ChangeLayout(Change&& change) {
    TakeUserDefaults();
    {
        const MLock preparing(preparingLock_);
        WhenSettled([&] { ChangeOrRestore(change); });
    }
    ReportLatencyChange();
    ReportParameterChanges();
}

// Hosts may have written parameters by now: only limits that nobody has touched follow the count.
void MAudioEffectPluginToAudioPluginMultiBandAdapter::TakeUserDefaults() {
    if (hasUserDefaults_.load(std::memory_order_acquire)) return;
    const int count = DefaultBandCount();  // may read a file, which is nothing to do under a lock
    bool isOther = false;
    {
        const MLock preparing(preparingLock_);
        WhenSettled([&] {
            if (hasUserDefaults_.load(std::memory_order_relaxed)) return;
            isOther = count != layout_.bandCount;
            if (isOther) {
                ChangeOrRestore([&] {
                    layout_.SetDefaults(count);
                    ResetUntouchedLimits(count);
                });
            }
            hasUserDefaults_.store(true, std::memory_order_release);
        });
    }
    if (!isOther) return;
    ReportLatencyChange();
    ReportParameterChanges();
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::ChangeBandParameters(
    const std::function<void(MBandParameters&)>& change) {
    ChangeLayout([&] { change(parameters_); });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::CreateDefaultBands(int count, bool notify) {
    MBandLayout::CheckBandCount(count);
    if (notify) {
        ChangeLayout([&] { ResetBands(count); });
        return;
    }
    TakeUserDefaults();
    WhenSettled([&] {
        const MLock lock(settingsLock_);
        ResetBands(count);
    });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::ResetBands(int count) {
    layout_.SetDefaults(count);
    const std::span<const double> limits = MBandLayout::DefaultLimits(count);
    for (int index = 0; index < count - 1; ++index) {
        parameters_.Limit(index).Overrule(std::log10(limits[static_cast<std::size_t>(index)]));
    }
    for (int band = 0; band < count; ++band) {
        parameters_.Gain(band).Overrule(0);
        parameters_.Panorama(band).Overrule(0);
        if (band >= EffectCount()) continue;
        Effect(band).SetDefaults();
        Effect(band).RequestRestart();
    }
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::ResetUntouchedLimits(int count) {
    constexpr double kRounding = 1e-6;  // of a host that writes back what it has read
    const std::span<const double> hertz = MBandLayout::DefaultLimits(count);
    for (int index = 0; index < MBandParameters::kLimits; ++index) {
        ParameterDefinition& limit = parameters_.Limit(index);
        if (std::abs(limit.Value() - firstLimits_[index]) > kRounding) continue;
        const auto place = static_cast<std::size_t>(index);
        limit.Overrule(place < hertz.size() ? std::log10(hertz[place]) : limit.defaultValue);
    }
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::LoadBandSettings(const MXMLNode& node) {
    ChangeLayout([&] {
        MBandLayoutRecord record{layout_.bandCount, parameters_.ReadLimits(), layout_.mute,
                                 layout_.bypass};
        record.Load(node);
        layout_.bandCount = record.bandCount;
        layout_.mute = record.mute;
        layout_.bypass = record.bypass;
        layout_.editedBand = std::min(layout_.editedBand, record.bandCount - 1);
        for (int index = 0; index < record.bandCount - 1; ++index) {
            ParameterDefinition& limit = parameters_.Limit(index);
            limit.Overrule(limit.Nearest(record.limits[index]));
        }
    });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::SaveBandSettings(MXMLNode node) {
    TakeUserDefaults();
    MBandLayoutRecord record;
    MStateRecords::Values values;
    {
        const MLock lock(ChangeLock());
        record = {layout_.bandCount, {}, layout_.mute, layout_.bypass};
        values = HandOver().Current();
    }
    for (int i = 0; i < MBandParameters::kLimits; ++i) {
        record.limits[i] = StateRecords().Of(parameters_.Limit(i), values);
    }
    record.Save(node);
}

MBandLayout MAudioEffectPluginToAudioPluginMultiBandAdapter::Layout() {
    TakeUserDefaults();
    const MLock lock(settingsLock_);
    return layout_;
}

MBandOptions MAudioEffectPluginToAudioPluginMultiBandAdapter::Options() {
    const MLock lock(settingsLock_);
    return options_;
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::SetOptions(const MBandOptions& options) {
    ChangeLayout([&] { options_ = options; });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::SetMute(int band, bool on) {
    ChangeLayout([&] {
        layout_.CheckBand(band);
        layout_.mute[band] = on;
    });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::SetBandBypass(int band, bool on) {
    ChangeLayout([&] {
        layout_.CheckBand(band);
        layout_.bypass[band] = on;
    });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::SetSolo(int band, bool on) {
    ChangeLayout([&] { layout_.SetSolo(band, on); });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::SetEditedBand(int band) {
    TakeUserDefaults();
    const MLock changing(ChangeLock());
    const MLock lock(settingsLock_);
    layout_.CheckBand(band);
    layout_.editedBand = band;
}
