// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/TemporaryFolder.h"
#include "tools/render/MAudioFile.h"
#include "tools/render/MRenderJob.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <vector>

/// Writes interleaved `samples` as a floating-point WAV file.
inline void WriteFloats(const std::filesystem::path& path, const MAudioShape& shape,
                        const std::vector<float>& samples) {
    MAudioWriter writer(path, shape, MSampleFormat::Float32, 1000000);
    writer.Write(std::span<const float>(samples));
    writer.Close();
}

/// A render of "in.wav" to "out.wav" that may stand there already.
inline MRenderSettings SettingsIn(const TemporaryFolder& folder) {
    MRenderSettings settings;
    settings.input = folder / "in.wav";
    settings.output = folder / "out.wav";
    settings.overwrite = true;
    return settings;
}

/// Every sample of the file, interleaved.
inline std::vector<float> ReadAll(const std::filesystem::path& path) {
    MAudioReader reader(path);
    const auto frames = static_cast<std::size_t>(reader.Frames().value_or(0));
    std::vector<float> samples(frames * static_cast<std::size_t>(reader.Shape().channels));
    const int read = reader.Read(samples);
    samples.resize(static_cast<std::size_t>(read) * reader.Shape().channels);
    return samples;
}
