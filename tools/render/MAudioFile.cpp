// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MAudioFile.h"

#include "core/MFormat.h"
#include "tools/render/MRenderFailure.h"

#include <sndfile.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <fstream>
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

[[noreturn]] void FailOpen(const char* action, const std::filesystem::path& path,
                           const std::string& reason) {
    FailFile(MFormat("cannot {0} {1}: {2}", action, path.string(), reason));
}

/// Why no decoder has taken a file that is there.
std::string DecoderMessage() {
    // The last decoder to be asked, that of MP3, leaves this number without a public name, whose
    // text denies that the file exists.
    constexpr int kNoDecoder = 7;
    const int error = sf_error(nullptr);
    const bool isUnknown = error == SF_ERR_UNRECOGNISED_FORMAT || error == kNoDecoder;
    return isUnknown ? "not a sound file that can be read" : LibraryMessage(nullptr);
}

/// Why `path` cannot be read as a file at all; 0 when it can.
int ReadError(const std::filesystem::path& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (error) return error.value();
    return std::filesystem::is_directory(status) ? EISDIR : 0;
}

/// The next four bytes as a number, the lowest first.
std::uint32_t ReadNumber(std::istream& file) {
    std::array<unsigned char, 4> bytes = {};
    file.read(reinterpret_cast<char*>(bytes.data()), bytes.size());
    return bytes[0] | bytes[1] << 8U | bytes[2] << 16U | std::uint32_t{bytes[3]} << 24U;
}

constexpr std::uint32_t Mark(const char (&text)[5]) {
    std::uint32_t mark = 0;
    for (int i = 3; i >= 0; --i) mark = mark << 8U | static_cast<unsigned char>(text[i]);
    return mark;
}

/// By how many seconds a WAV file is shorter than it says; 0 for every other file. The library
/// reads one that was cut off without a word, while FLAC and Ogg files then fail.
double MissingSeconds(const std::filesystem::path& path) {
    // Who writes into a pipe cannot go back to the length and leaves a number above this one.
    constexpr std::uint32_t kUnknown = 0x7FFFF000;
    std::ifstream file(path, std::ios::binary);
    if (ReadNumber(file) != Mark("RIFF")) return 0;
    ReadNumber(file);  // a length that some programs get wrong
    if (ReadNumber(file) != Mark("WAVE")) return 0;
    std::uint32_t bytesPerSecond = 0;
    while (file) {
        const std::uint32_t name = ReadNumber(file), length = ReadNumber(file);
        const auto start = static_cast<std::int64_t>(file.tellg());
        if (name == Mark("data")) {
            const auto end = static_cast<std::int64_t>(std::filesystem::file_size(path));
            const std::int64_t missing = start + length - end;
            const bool isCut = length < kUnknown && missing > 0 && bytesPerSecond > 0;
            return isCut ? static_cast<double>(missing) / bytesPerSecond : 0;
        }
        if (name == Mark("fmt ")) {
            file.seekg(start + 8);
            bytesPerSecond = ReadNumber(file);
        }
        file.seekg(start + length + length % 2);
    }
    return 0;
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
    if (const int error = ReadError(path); error != 0) FailOpen("read", path, SystemMessage(error));
    SF_INFO info = {};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (file == nullptr) FailOpen("read", path, DecoderMessage());
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
    missingSeconds_ = ::MissingSeconds(path);
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
    if (file == nullptr) {
        FailOpen("write", path, errno != 0 ? SystemMessage(errno) : LibraryMessage(nullptr));
    }
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
