// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "hosts/vst2/VstTypes.h"

#include <string>
#include <vector>

/// What the command line asks for.
struct MHostCheckOptions {
    std::string library;
    std::string input;                  ///< raw samples; empty for a report alone
    std::string output;                 ///< raw samples
    std::string state;                  ///< a file with a state to load first; may be empty
    std::vector<std::string> settings;  ///< "name=text", names as hosts show them
    int channels = 2;
    int sampleRate = 48000;  ///< hertz
    int blockSize = 512;     ///< frames
    double tempo = 120;      ///< quarter notes per minute

    /// Throws MException, with what would do, for arguments that make no sense. [main]
    static MHostCheckOptions Parse(const std::vector<std::string>& arguments);
};

/// Loads a plug-in library as a host does and says what it found; see Usage.
class MHostCheck {
public:
    static const char* Usage();

    explicit MHostCheck(MHostCheckOptions options) : options_(std::move(options)) {}

    /// Who the plug-in says it is, and how long it takes to scan, load and first sound. Throws
    /// MException when it does not load. [main]
    std::string Report() const;
    /// What hosts rely on and the plug-in breaks; see MHostRules. Throws MException when it does
    /// not load. [main]
    std::vector<std::string> Faults() const;
    /// Sends the input through the plug-in. Throws MException. [main]
    void Render() const;

private:
    double Scan(std::string& identity) const;
    double FirstBlock(double& unload) const;

    MHostCheckOptions options_;
};
