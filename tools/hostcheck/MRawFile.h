// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Files without any format of their own, which need no library to read.
namespace MRawFile {

/// All bytes of a file. Throws MException when it cannot be read. [main]
std::vector<std::uint8_t> ReadBytes(const std::string& path);
/// Interleaved samples, single precision as the machine holds them. Throws as ReadBytes. [main]
std::vector<float> ReadSamples(const std::string& path);
/// Throws MException when the file cannot be written. [main]
void WriteSamples(const std::string& path, const std::vector<float>& samples);

}  // namespace MRawFile
