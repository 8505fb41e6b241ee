// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MMIDIBytes.h"

#include "tools/render/MRenderFailure.h"

std::uint8_t MMIDIBytes::Peek() const {
    if (rest_.empty()) FailFile("it ends too early");
    return static_cast<std::uint8_t>(rest_.front());
}

std::string_view MMIDIBytes::Take(std::uint32_t count) {
    if (count > rest_.size()) FailFile("it ends too early");
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
}

std::uint32_t MMIDIBytes::Number(int bytes) {
    std::uint32_t number = 0;
    for (const char byte : Take(static_cast<std::uint32_t>(bytes))) {
        number = number << 8 | static_cast<std::uint8_t>(byte);
    }
    return number;
}

std::uint32_t MMIDIBytes::Length() {
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i) {
        const std::uint8_t byte = Byte();
        number = number << 7 | (byte & 0x7FU);
        if (byte < 0x80) return number;
    }
    FailFile("a time or length has more than four bytes");
}
