// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"
#include "adapters/multiband/MBandLayoutRecord.h"
#include "core/MGuard.h"

#include <algorithm>
#include <cmath>
#include <span>

void MAudioEffectPluginToAudioPluginMultiBandAdapter::Draft::SetDefaults(int bandCount) {
    layout.SetDefaults(bandCount);
    auto limit = limits.begin();
    for (const double hertz : MBandLayout::DefaultLimits(bandCount)) *limit++ = std::log10(hertz);
}

// Under the preparing and the change lock. Effects first, then the design, then what refers to
// both, so that a block only ever sees what is ready to run. `edit` fills a draft. `write` writes
// records once no step can fail any more.
template <class Edit, class Write>
void MAudioEffectPluginToAudioPluginMultiBandAdapter::PutIntoForce(Edit&& edit, Write&& write) {
    Draft draft{layout_, options_};
    edit(draft);
    MBandParameters::Limits limits = parameters_.ReadLimits();
    for (int i = 0; i < MBandParameters::kLimits; ++i)
        limits[i] = draft.limits[i].value_or(limits[i]);
    PrepareBands(draft.layout.bandCount);
    auto part = MakePart(draft.layout, draft.options, limits, RateOfDesigns());
    Keep(draft);
    write();
    RestartReturningBands(draft.layout.bandCount);
    const auto retired =
        HandOver().Publish([&](MStateHandOver::Publication& published) { published.part = part; });
    NotePublished(part->inForce);
    for (int effect = 0; effect < EffectCount(); ++effect) Effect(effect).RequestRefresh();
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::ApplyGlobalChange(bool bandsChanged) {
    PutIntoForce(
        [&](Draft& draft) {
            if (bandsChanged) draft.layout.DeriveSolo();
        },
        [] {});
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::OnGlobalChange(bool bandsChanged) {
    Guard("MAudioEffectPluginToAudioPluginMultiBandAdapter::OnGlobalChange", [&] {
        {
            const MLock preparing(preparingLock_);
            WhenSettled([&] { ApplyGlobalChange(bandsChanged); });
        }
        ReportLatencyChange();
        ReportParameterChanges();
    });
}

template <class Edit, class Write>
void MAudioEffectPluginToAudioPluginMultiBandAdapter::ChangeLayout(Edit&& edit, Write&& write) {
    TakeUserDefaults();
    {
        const MLock preparing(preparingLock_);
        WhenSettled([&] {
            PutIntoForce(
                [&](Draft& draft) {
                    edit(draft);
                    draft.layout.DeriveSolo();
                },
                write);
        });
    }
    ReportLatencyChange();
    ReportParameterChanges();
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::Keep(const Draft& draft) {
    const MLock lock(settingsLock_);
    layout_ = draft.layout;
    options_ = draft.options;
    for (int i = 0; i < MBandParameters::kLimits; ++i) {
        if (draft.limits[i]) parameters_.Limit(i).Overrule(*draft.limits[i]);
    }
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
                PutIntoForce(
                    [&](Draft& draft) {
                        draft.layout.SetDefaults(count);
                        draft.layout.DeriveSolo();
                        DraftUntouchedLimits(draft);
                    },
                    [] {});
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
    ChangeLayout([&](const Draft&) { change(parameters_); });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::CreateDefaultBands(int count, bool notify) {
    MBandLayout::CheckBandCount(count);
    if (notify) {
        ChangeLayout([&](Draft& draft) { draft.SetDefaults(count); }, [&] { ResetEffects(count); });
        return;
    }
    TakeUserDefaults();
    WhenSettled([&] { ResetBands(count); });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::ResetBands(int count) {
    Draft draft{layout_, options_};
    draft.SetDefaults(count);
    Keep(draft);
    ResetEffects(count);
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::ResetEffects(int count) {
    for (int band = 0; band < count; ++band) {
        parameters_.Gain(band).Overrule(0);
        parameters_.Panorama(band).Overrule(0);
        if (band >= EffectCount()) continue;
        Effect(band).SetDefaults();
        Effect(band).RequestRestart();
    }
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::DraftUntouchedLimits(Draft& draft) {
    constexpr double kRounding = 1e-6;  // of a host that writes back what it has read
    const std::span<const double> hertz = MBandLayout::DefaultLimits(draft.layout.bandCount);
    for (int index = 0; index < MBandParameters::kLimits; ++index) {
        const ParameterDefinition& limit = parameters_.Limit(index);
        if (std::abs(limit.Value() - firstLimits_[index]) > kRounding) continue;
        const auto place = static_cast<std::size_t>(index);
        draft.limits[index] = place < hertz.size() ? std::log10(hertz[place]) : limit.defaultValue;
    }
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::LoadBandSettings(const MXMLNode& node) {
    ChangeLayout([&](Draft& draft) {
        MBandLayout& layout = draft.layout;
        MBandLayoutRecord record{layout.bandCount, parameters_.ReadLimits(), layout.mute,
                                 layout.bypass};
        record.Load(node);
        layout.bandCount = record.bandCount;
        layout.mute = record.mute;
        layout.bypass = record.bypass;
        layout.editedBand = std::min(layout.editedBand, record.bandCount - 1);
        for (int index = 0; index < record.bandCount - 1; ++index) {
            draft.limits[index] = parameters_.Limit(index).Nearest(record.limits[index]);
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
    ChangeLayout([&](Draft& draft) { draft.options = options; });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::SetMute(int band, bool on) {
    ChangeLayout([&](Draft& draft) {
        draft.layout.CheckBand(band);
        draft.layout.mute[band] = on;
    });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::SetBandBypass(int band, bool on) {
    ChangeLayout([&](Draft& draft) {
        draft.layout.CheckBand(band);
        draft.layout.bypass[band] = on;
    });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::SetSolo(int band, bool on) {
    ChangeLayout([&](Draft& draft) { draft.layout.SetSolo(band, on); });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::SetEditedBand(int band) {
    TakeUserDefaults();
    const MLock changing(ChangeLock());
    const MLock lock(settingsLock_);
    layout_.CheckBand(band);
    layout_.editedBand = band;
}
