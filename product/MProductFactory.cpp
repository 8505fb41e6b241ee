// SPDX-License-Identifier: GPL-3.0-or-later
#include "product/MProductFactory.h"

#include "core/MGuard.h"
#include "effects/delay/MDelayAudioEffectPluginInterface.h"
#include "effects/delay/MDelayRandomRules.h"
#include "product/MProduct.h"

namespace {

constexpr std::pair<const char*, const char*> kPanelShortNames[] = {
    {"Tap 1", "T1"},
    {"Tap 2", "T2"},
    {"Synchronization 1", "T1 Sync"},
    {"Synchronization 2", "T2 Sync"},
};

}  // namespace

std::unique_ptr<MAudioEffectPluginToAudioPluginMultiBandAdapter> MProductFactory::Create(
    MSettings* settings, MPresetStepper* presets) {
    using Product = std::unique_ptr<MAudioEffectPluginToAudioPluginMultiBandAdapter>;
    Product product;
    Guard("MProductFactory::Create", [&] {
        auto made = std::make_unique<Product::element_type>(
            MEffectAdapterParts{MProduct::kIdentity, &MDelayAudioEffectPluginInterface,
                                kPanelShortNames, settings, presets, kDelayRandomRules});
        if (made->Initialize()) product = std::move(made);
    });
    return product;
}
