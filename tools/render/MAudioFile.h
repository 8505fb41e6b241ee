// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/MSampleFormat.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// The audio library's own handle.
using MSoundFile = void;

/// Shape of an audio file.
struct MAudioShape {
    int channels = 0;    ///< 1..8
    int sampleRate = 0;  ///< hertz
};

/// Reads a WAV, FLAC, Ogg or MP3 file front to back. One thread only.
class MAudioReader {
public:
    static constexpr int kMaxChannels = 8;
    // Hertz. Hosts can set no others: the plug-in would go on at the rate it had before.
    static constexpr int kLowestRate = 101;
    static constexpr int kHighestRate = 1 << 22;

    /// Opens `path`. Throws MRenderFailure (File) when it is missing, is no sound file or has more
    /// channels or another rate than that. [main]
    explicit MAudioReader(const std::filesystem::path& path);

    const MAudioShape& Shape() const { return shape_; }
    /// Frames of the whole file as its header states them; empty when it does not. [main]
    std::optional<std::int64_t> Frames() const { return frames_; }
    /// By how much a WAV file that was cut off ends before the end that its header states. [main]
    double MissingSeconds() const { return missingSeconds_; }

    /// Reads the next frames, interleaved, until `samples` (a multiple of the channel count) is
    /// full or the file ends, and returns how many frames that were. Values that are not finite
    /// come as 0. Throws MRenderFailure (File) when a file other than WAV breaks off before its
    /// stated end. [main]
    int Read(std::span<float> samples);

private:
    std::filesystem::path path_;
    std::shared_ptr<MSoundFile> file_;
    MAudioShape shape_;
    std::optional<std::int64_t> frames_;
    std::int64_t position_ = 0;  // frames read so far
    bool mayEndEarly_ = false;   // the stated length is an estimate
    double missingSeconds_ = 0;
};

/// Writes a WAV file front to back. One thread only.
class MAudioWriter {
public:
    /// Creates or empties `path`. A file of `maxFrames` or fewer frames that could outgrow the WAV
    /// format's 4 GB becomes an RF64 file when it really does. Throws MRenderFailure (File). [main]
    MAudioWriter(const std::filesystem::path& path, const MAudioShape& shape, MSampleFormat format,
                 std::optional<std::int64_t> maxFrames);

    /// Appends interleaved frames. Throws MRenderFailure (File), on a full disk for instance.
    /// [main]
    void Write(std::span<const float> samples);
    /// Appends interleaved frames of whole numbers in the format's own range; 16 and 24 bit only.
    void Write(std::span<const int> samples);
    /// Cuts the file to its first `frames` frames. [main]
    void Truncate(std::int64_t frames);
    /// Finishes the header. Throws MRenderFailure (File). [main]
    void Close();

    std::int64_t Frames() const { return frames_; }

private:
    void Check(std::int64_t writtenSamples, std::size_t wanted);

    std::shared_ptr<MSoundFile> file_;
    int channels_;
    std::int64_t frames_ = 0;
    int leftShift_ = 0;  // whole numbers are handed over left-aligned in 32 bits
    std::vector<int> scratch_;
};
