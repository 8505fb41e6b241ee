// SPDX-License-Identifier: GPL-3.0-or-later
// Loads mutated states. Whatever comes in: nothing thrown but what says why, sound stays finite,
// and what was loaded saves, loads and saves again as the same bytes.
#include "core/MException.h"
#include "core/MFailureReporter.h"
#include "plugin/MPluginState.h"
#include "product/MProductFactory.h"
#include "tests/support/Noise.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

// The names are the fuzzer's.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t room);

namespace {

using Bytes = std::span<const std::uint8_t>;

std::string TextOf(Bytes bytes) {
    try {
        return MPluginState::Expand(bytes);
    } catch (const MException&) {
        return {bytes.begin(), bytes.end()};
    }
}

/// Puts a number that is trouble into one of the attributes.
void MutateNumber(std::string& text, std::minstd_rand& random) {
    constexpr const char* kNumbers[] = {"nan",    "-1",         "1e308", "0",   "7", "-inf", "",
                                        "1e-320", "2147483648", "x",     "0,5", "6", "1"};
    const std::size_t start = text.find("=\"", random() % (text.size() + 1));
    if (start == std::string::npos) return;
    const std::size_t end = text.find('"', start + 2);
    if (end == std::string::npos) return;
    text.replace(start + 2, end - start - 2, kNumbers[random() % std::size(kNumbers)]);
}

void Check(bool holds) {
    if (!holds) std::abort();
}

void CheckSound(MAudioPlugin& plugin) {
    static Channels input(2, 64), output(2, 64);
    input.FillWithNoise(1);
    plugin.Process(input.Constants(), output.Pointers(), 64);
    for (int c = 0; c < 2; ++c) {
        for (const float sample : output[c]) Check(std::isfinite(sample));
    }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t room, unsigned seed) {
    std::minstd_rand random(seed);
    if (random() % 8 == 0) return LLVMFuzzerMutate(data, size, room);
    std::string text = TextOf({data, size});
    if (random() % 2 == 0) MutateNumber(text, random);
    const std::size_t length = std::min(text.size(), room);
    text.resize(std::max(room, text.size()));
    auto* const bytes = reinterpret_cast<std::uint8_t*>(text.data());
    text.resize(LLVMFuzzerMutate(bytes, length, room));
    if (random() % 4 == 0) {
        const std::vector<std::uint8_t> chunk = MPluginState::Compress(text);
        text.assign(chunk.begin(), chunk.end());
    }
    const std::size_t count = std::min(text.size(), room);
    std::copy_n(text.begin(), count, data);
    return count;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto previous = MFailureReporter::Exchange([](const std::string&) {});
    static const auto plugin = [] {
        auto made = MProductFactory::Create();
        made->InitProcessing();
        return made;
    }();
    try {
        MPluginState::Load(*plugin, {data, size});
    } catch (const MException&) {
        return 0;
    }
    CheckSound(*plugin);
    const std::string text = MPluginState::SaveText(*plugin);
    MPluginState::Load(*plugin, MPluginState::Compress(text));
    Check(MPluginState::SaveText(*plugin) == text);
    return 0;
}
// NOLINTEND(readability-identifier-naming)
