// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MGuard.h"
#include "hosts/vst2/MAudioPluginVSTAdapter.h"
#include "plugin/MPluginState.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace Vst2 {

VstInt32 MAudioPluginVSTAdapter::getChunk(void** data, bool /*isPreset*/) {
    return Guard("MAudioPluginVSTAdapter::getChunk", VstInt32{0}, [&] {
        lastChunk_ = MPluginState::Save(*plugin_);
        *data = lastChunk_.data();
        return static_cast<VstInt32>(lastChunk_.size());
    });
}

VstInt32 MAudioPluginVSTAdapter::setChunk(const void* data, VstInt32 byteSize, bool /*isPreset*/) {
    Guard("MAudioPluginVSTAdapter::setChunk", [&] {
        const auto count = static_cast<std::size_t>(data == nullptr ? 0 : std::max(byteSize, 0));
        MPluginState::Load(*plugin_, {static_cast<const std::uint8_t*>(data), count});
    });
    return 1;
}

}  // namespace Vst2
