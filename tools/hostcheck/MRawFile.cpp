// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/hostcheck/MRawFile.h"

#include "core/MException.h"
#include "core/MFormat.h"

#include <cstring>
#include <fstream>
#include <iterator>

std::vector<std::uint8_t> MRawFile::ReadBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw MException(MFormat("cannot read {0}", path));
    std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(file), {});
    return bytes;
}

std::vector<float> MRawFile::ReadSamples(const std::string& path) {
    const std::vector<std::uint8_t> bytes = ReadBytes(path);
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    return samples;
}

void MRawFile::WriteSamples(const std::string& path, const std::vector<float>& samples) {
    std::ofstream file(path, std::ios::binary);
    // Bytes are all that a stream takes.
    file.write(reinterpret_cast<const char*>(samples.data()),
               static_cast<std::streamsize>(samples.size() * sizeof(float)));
    file.close();
    if (!file) throw MException(MFormat("cannot write {0}", path));
}
