// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/MAudioPluginVSTAdapter.h"
#include "product/MProduct.h"
#include "product/MProductInstance.h"

#include <memory>

#if defined(_WIN32)
#define KESTRUNE_ENTRY  // exports.def names what the library exports
#else
#define KESTRUNE_ENTRY __attribute__((visibility("default")))
#endif

/// What a VST 2.4 host calls first: makes an instance, null when that fails. [main]
extern "C" KESTRUNE_ENTRY Vst2::AEffect* VSTPluginMain(Vst2::AudioMasterCallback host) {
    return Vst2::CreateEffect(host, MProduct::kVstUniqueID, [] {
        const std::shared_ptr<MProductInstance> product = MProductInstance::Create();
        return product != nullptr ? std::shared_ptr<MAudioPlugin>(product, &product->Instance())
                                  : nullptr;
    });
}

#if !defined(_WIN32)
/// The same under the name that hosts of old look for. C++ has another use for a function `main`,
/// so only the linker learns of it; on Windows exports.def gives the first one both names.
extern "C" KESTRUNE_ENTRY Vst2::AEffect* VSTPluginMainOfOld(Vst2::AudioMasterCallback host) __asm__(
    "main");

Vst2::AEffect* VSTPluginMainOfOld(Vst2::AudioMasterCallback host) { return VSTPluginMain(host); }
#endif
