// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MAudioFile.h"

#include "core/MFormat.h"
#include "tools/render/MRenderFailure.h"

#include <sndfile.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <system_error>

namespace {

SNDFILE* Handle(const std::shared_ptr<MSoundFile>& file) {
    return static_cast<SNDFILE*>(file.get());
}

std::shared_ptr<MSoundFile> Adopt(SNDFILE* file) {
    return {file, [](MSoundFile* handle) { sf_close(static_cast<SNDFILE*>(handle)); }};
}

std::string SystemMessage(int error) { return std::generic_category().message(error); }

/// The library's message without the full stop that some of its messages end in.
std::string LibraryMessage(SNDFILE* file) {
    std::string text = sf_strerror(file);
    while (!text.empty() && (text.back() == '.' || text.back() == ' ')) text.pop_back();
    return text;
}

[[noreturn]] void FailOpen(const char* action, const std::filesystem::path& path, int systemError) {
    const std::string reason =
        systemError != 0 ? SystemMessage(systemError) : LibraryMessage(nullptr);
    FailFile(MFormat("cannot {0} {1}: {2}", action, path.string(), reason));
}

/// Why `path` cannot be read as a file at all; 0 when it can.
int ReadError(const std::filesystem::path& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (error) return error.value();
    return std::filesystem::is_directory(status) ? EISDIR : 0;
}

int FormatCode(const MAudioShape& shape, MSampleFormat format,
               std::optional<std::int64_t> maxFrames) {
    constexpr std::int64_t kMaxWavBytes = 0xFFFF0000;  // leaves room for the headers
    const int subtype = format == MSampleFormat::Pcm16   ? SF_FORMAT_PCM_16
                        : format == MSampleFormat::Pcm24 ? SF_FORMAT_PCM_24
                                                         : SF_FORMAT_FLOAT;
    const auto frameBytes = std::int64_t{shape.channels} * (static_cast<int>(format) / 8);
    const bool fits = maxFrames && *maxFrames < kMaxWavBytes / frameBytes;
    return (fits ? SF_FORMAT_WAV : SF_FORMAT_RF64) | subtype;
}

}  // namespace

MAudioReader::MAudioReader(const std::filesystem::path& path) : path_(path) {
    if (const int error = ReadError(path); error != 0) FailOpen("read", path, error);
    SF_INFO info = {};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (file == nullptr) FailOpen("read", path, 0);
    file_ = Adopt(file);
    shape_ = {info.channels, info.samplerate};
    if (info.channels < 1 || info.channels > kMaxChannels) {
        FailFile(MFormat("{0} has {1} channels; 1 to {2} are possible", path.string(),
                         info.channels, kMaxChannels));
    }
    if (info.samplerate < kLowestRate || info.samplerate > kHighestRate) {
        FailFile(MFormat("{0} has a sample rate of {1} Hz; {2} to {3} Hz are possible",
                         path.string(), info.samplerate, kLowestRate, kHighestRate));
    }
    if (info.frames >= 0 && info.frames < SF_COUNT_MAX) frames_ = info.frames;
    // The length of an MP3 stream is an estimate unless the file states it.
    mayEndEarly_ = (info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_MPEG;
}

int MAudioReader::Read(std::span<float> samples) {
    const auto wanted = static_cast<std::int64_t>(samples.size()) / shape_.channels;
    const std::int64_t got = sf_readf_float(Handle(file_), samples.data(), wanted);
    position_ += got;
    if (got < wanted) {
        const bool isShort = frames_ && position_ < *frames_ && !mayEndEarly_;
        if (isShort || sf_error(Handle(file_)) != SF_ERR_NO_ERROR) {
            FailFile(MFormat("{0} is broken: it ends after {1} of {2} frames", path_.string(),
                             position_, frames_.value_or(0)));
        }
    }
    for (float& sample : samples.first(static_cast<std::size_t>(got * shape_.channels))) {
        if (!std::isfinite(sample)) sample = 0;
    }
    return static_cast<int>(got);
}

MAudioWriter::MAudioWriter(const std::filesystem::path& path, const MAudioShape& shape,
                           MSampleFormat format, std::optional<std::int64_t> maxFrames)
    : channels_(shape.channels),
      leftShift_(format == MSampleFormat::Float32 ? 0 : 32 - static_cast<int>(format)) {
    SF_INFO info = {};
    info.channels = shape.channels;
    info.samplerate = shape.sampleRate;
    info.format = FormatCode(shape, format, maxFrames);
    errno = 0;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (file == nullptr) FailOpen("write", path, errno);
    file_ = Adopt(file);
    // The peak chunk carries the time of day, and equal renders shall be equal files.
    sf_command(file, SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
    sf_command(file, SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
}

void MAudioWriter::Write(std::span<const float> samples) {
    errno = 0;
    Check(sf_write_float(Handle(file_), samples.data(), static_cast<sf_count_t>(samples.size())),
          samples.size());
}

void MAudioWriter::Write(std::span<const int> samples) {
    scratch_.resize(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) scratch_[i] = samples[i] << leftShift_;
    errno = 0;
    Check(sf_write_int(Handle(file_), scratch_.data(), static_cast<sf_count_t>(samples.size())),
          samples.size());
}

void MAudioWriter::Check(std::int64_t writtenSamples, std::size_t wanted) {
    frames_ += writtenSamples / channels_;
    if (writtenSamples == static_cast<std::int64_t>(wanted)) return;
    const std::string reason = errno != 0 ? SystemMessage(errno) : LibraryMessage(Handle(file_));
    FailFile("cannot write the output: " + reason);
}

void MAudioWriter::Truncate(std::int64_t frames) {
    sf_count_t count = frames;
    if (sf_command(Handle(file_), SFC_FILE_TRUNCATE, &count, sizeof count) != 0) {
        FailFile("cannot shorten the output: " + LibraryMessage(Handle(file_)));
    }
    frames_ = frames;
}

void MAudioWriter::Close() {
    if (file_ == nullptr) return;
    sf_write_sync(Handle(file_));
    const int error = sf_error(Handle(file_));
    file_.reset();
    if (error != SF_ERR_NO_ERROR) {
        FailFile(MFormat("cannot write the output: {0}", sf_error_number(error)));
    }
}
