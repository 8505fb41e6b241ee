// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

/// A folder of a test's own that is gone with it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::random_device random;
        do {
            path_ =
                std::filesystem::temp_directory_path() / ("kestrune-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(path_));
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(path_ / name, std::ios::binary) << text;
    }
    std::string Read(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(path_ / name, std::ios::binary).rdbuf();
        return text.str();
    }

    /// How many files are in it, hidden ones included.
    int Files() const {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(path_)) {
            count += entry.is_regular_file() ? 1 : 0;
        }
        return count;
    }

private:
    std::filesystem::path path_;
};
