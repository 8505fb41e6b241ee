// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/MVSTText.h"

#include <algorithm>

namespace Vst2 {

void CopyText(std::string_view text, std::size_t limit, char* buffer) noexcept {
    const auto continues = [&](std::size_t i) {
        return (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80;
    };
    std::size_t length = std::min(text.size(), limit);
    if (length < text.size()) {
        while (length > 0 && continues(length)) --length;
    }
    std::copy_n(text.data(), length, buffer);
    buffer[length] = '\0';
}

}  // namespace Vst2
