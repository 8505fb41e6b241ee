// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MProgressBar.h"

#include "core/MFormat.h"

#include <iostream>
#include <string>
#include <unistd.h>

namespace {

constexpr int kBarWidth = 40;                               // characters
constexpr auto kInterval = std::chrono::milliseconds(100);  // between two drawings
constexpr const char* kClearLine = "\r\x1b[K";

}  // namespace

MProgressBar::MProgressBar(bool isQuiet) : isShown_(!isQuiet && isatty(STDERR_FILENO) == 1) {}

MProgressBar::~MProgressBar() {
    if (isDrawn_) std::cerr << kClearLine << std::flush;
}

void MProgressBar::Show(double seconds, std::optional<double> share) {
    if (!isShown_) return;
    const auto now = std::chrono::steady_clock::now();
    if (isDrawn_ && now - lastDrawn_ < kInterval) return;
    const int filled = static_cast<int>(share.value_or(1) * kBarWidth);
    const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '.');
    std::cerr << kClearLine << MFormat("[{0}] {1;.1} s", bar, seconds) << (share ? "" : ", tail")
              << std::flush;
    isDrawn_ = true;
    lastDrawn_ = now;
}
