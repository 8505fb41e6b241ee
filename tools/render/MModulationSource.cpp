// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MModulationSource.h"

#include "core/MFormat.h"
#include "core/MText.h"
#include "plugin/values/MChoiceReader.h"
#include "tools/render/MRenderFailure.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

std::string Sources() { return MListShapes() + ", follower, envelope or walk"; }

/// Goes through the words of a text.
class Words {
public:
    explicit Words(std::string_view text) {
        std::istringstream stream{MText::ToLower(text)};
        for (std::string word; stream >> word;) words_.push_back(word);
    }

    bool IsDone() const { return next_ == words_.size(); }
    const std::string& Peek() const { return words_[next_]; }
    std::string Take() { return words_[next_++]; }
    bool TakeIf(std::string_view word) {
        if (IsDone() || Peek() != word) return false;
        ++next_;
        return true;
    }

    /// A number and the unit behind it, which may be a word of its own; empty, and nothing is
    /// taken, where none stands.
    std::optional<std::pair<double, std::string>> TakeNumber() {
        if (IsDone()) return std::nullopt;
        const auto number = MText::ReadLeadingNumber(Peek());
        if (!number) return std::nullopt;
        std::string unit(number->rest);
        ++next_;
        const bool isUnit = !IsDone() && (Peek() == "hz" || Peek() == "ms" || Peek() == "s" ||
                                          Peek() == "db" || Peek() == "%");
        if (unit.empty() && isUnit) unit = Take();
        return std::pair{number->value, unit};
    }

private:
    std::vector<std::string> words_;
    std::size_t next_ = 0;
};

/// What may stand behind a word, in the unit that the setting has.
struct Option {
    std::string_view word;
    std::string_view units;  // accepted, each with a blank behind it
    double minimum, maximum;
    double* value;
};

double Take(Words& words, const Option& option) {
    const auto number = words.TakeNumber();
    const std::string wanted =
        MFormat("{0} takes {1} to {2}{3}", option.word, MText::WriteNumber(option.minimum),
                MText::WriteNumber(option.maximum),
                option.units == "s ms " ? " s, or ms"
                : option.units == "db " ? " dB"
                : option.units == "% "  ? ", or percent"
                                        : "");
    if (!number) FailUsage(wanted);
    double value = number->first;
    const std::string& unit = number->second;
    if (unit == "ms") value *= 0.001;
    if (unit == "%") value *= 0.01;
    const bool fits = unit.empty() || option.units.find(unit + " ") != std::string_view::npos;
    if (!fits || !(value >= option.minimum && value <= option.maximum)) FailUsage(wanted);
    return value;
}

/// A length such as "1/4d"; false, and nothing changes, for a word that is none.
bool ReadNote(const std::string& word, MModulatorSettings& settings) {
    if (word.find('/') == std::string::npos) return false;
    const std::size_t end = word.find_first_not_of("0123456789/");
    const std::string type = end == std::string::npos ? "" : word.substr(end);
    const auto length = MReadChoice(MTempoSync::LengthNames(), word.substr(0, end));
    if (!length || (!type.empty() && type != "d" && type != "t")) {
        FailUsage(
            MFormat("\"{0}\" is no note; write it as 1/4, 1/8d (dotted) or 1/8t (triplet)", word));
    }
    settings.isSynchronised = true;
    settings.syncLength = static_cast<int>(*length);
    settings.syncType = type == "d"   ? MTempoSync::Type::Dotted
                        : type == "t" ? MTempoSync::Type::Triplets
                                      : MTempoSync::Type::Straight;
    return true;
}

void ReadSteps(Words& words, MShapeSettings& shape) {
    shape.stepCount = 0;
    while (shape.stepCount < MShapeSettings::kMaxSteps) {
        const auto number = words.TakeNumber();
        if (!number) break;
        const double value = number->second == "%" ? number->first * 0.01 : number->first;
        if (!(value >= 0 && value <= 1)) FailUsage("steps are 0 to 1");
        shape.steps[shape.stepCount++] = value;
    }
    if (shape.stepCount == 0)
        FailUsage("steps takes up to 64 values, such as \"1/4 values 0 0.5 1\"");
}

void ReadName(const std::string& word, MModulatorSettings& settings) {
    const auto shape = std::find(kShapeNames.begin(), kShapeNames.end(), word);
    if (shape != kShapeNames.end()) {
        settings.source = MModulatorSource::Oscillator;
        settings.shape.shape = static_cast<MShape>(shape - kShapeNames.begin());
    } else if (word == "follower") {
        settings.source = MModulatorSource::Follower;
    } else if (word == "envelope") {
        settings.source = MModulatorSource::Envelope;
    } else if (word == "walk") {
        settings.source = MModulatorSource::RandomWalk;
    } else {
        FailUsage(MFormat("\"{0}\" is no source of modulation; there are {1}", word, Sources()));
    }
}

std::vector<Option> OptionsOf(MModulatorSettings& settings, double& seed) {
    constexpr double kLongest = 60;  // seconds
    std::vector<Option> options = {{"depth", "% ", 0, 1, &settings.depth},
                                   {"offset", "% ", -1, 1, &settings.offset},
                                   {"lag", "s ms ", 0, kLongest, &settings.smoothing}};
    const auto add = [&](const Option& option) { options.push_back(option); };
    if (settings.source == MModulatorSource::Follower) {
        add({"attack", "s ms ", 0, kLongest, &settings.follower.attack});
        add({"release", "s ms ", 0, kLongest, &settings.follower.release});
        add({"threshold", "db ", -120, 24, &settings.follower.threshold});
        add({"knee", "db ", 0, 48, &settings.follower.knee});
        add({"range", "db ", 0, 144, &settings.follower.range});
        return options;
    }
    if (settings.source == MModulatorSource::Envelope) {
        add({"attack", "s ms ", 0, kLongest, &settings.envelope.attack});
        add({"decay", "s ms ", 0, kLongest, &settings.envelope.decay});
        add({"sustain", "% ", 0, 1, &settings.envelope.sustain});
        add({"release", "s ms ", 0, kLongest, &settings.envelope.release});
        add({"velocity", "% ", 0, 1, &settings.envelope.velocityAmount});
        return options;
    }
    add({"seed", "", 0, 4294967295.0, &seed});
    if (settings.source == MModulatorSource::RandomWalk) {
        add({"smoothness", "% ", 0, 1, &settings.walk.smoothness});
        return options;
    }
    add({"phase", "% ", 0, 1, &settings.phase});
    add({"width", "% ", 0, 1, &settings.shape.width});
    add({"glide", "% ", 0, 1, &settings.shape.smoothing});
    return options;
}

/// One option; false for a word that is none.
bool ReadOption(Words& words, const std::vector<Option>& options, MModulatorSettings& settings) {
    if (words.TakeIf("invert")) {
        settings.isInverted = true;
        return true;
    }
    if (settings.source == MModulatorSource::Oscillator) {
        if (words.TakeIf("once")) {
            settings.isOneShot = true;
            return true;
        }
        if (words.TakeIf("values")) {
            ReadSteps(words, settings.shape);
            return true;
        }
    }
    for (const Option& option : options) {
        if (!words.TakeIf(option.word)) continue;
        *option.value = Take(words, option);
        return true;
    }
    return false;
}

}  // namespace

std::string MListShapes() {
    std::string text;
    for (const std::string_view name : kShapeNames) {
        if (!text.empty()) text += ", ";
        text += name;
    }
    return text;
}

void MReadModulationSource(std::string_view text, MModulatorSettings& settings) {
    Words words(text);
    if (words.IsDone()) FailUsage(MFormat("a modulation begins with its source: {0}", Sources()));
    ReadName(words.Take(), settings);
    double seed = settings.shape.seed;
    const std::vector<Option> options = OptionsOf(settings, seed);
    const bool isWalk = settings.source == MModulatorSource::RandomWalk;
    const bool hasRate = isWalk || settings.source == MModulatorSource::Oscillator;
    while (!words.IsDone()) {
        if (ReadOption(words, options, settings)) continue;
        const std::string word = words.Peek();
        if (settings.source == MModulatorSource::Oscillator && ReadNote(word, settings)) {
            words.Take();
            continue;
        }
        if (hasRate && MText::ReadLeadingNumber(word)) {
            double& rate = isWalk ? settings.walk.rate : settings.rate;
            rate = Take(words, {"the rate", "hz ", 0.01, 50, nullptr});
            continue;
        }
        std::string known = isWalk ? "a rate" : "invert";
        if (settings.source == MModulatorSource::Oscillator) {
            known = "a rate, a note such as 1/4, once, values";
        }
        for (const Option& option : options) known += MFormat(", {0}", option.word);
        FailUsage(MFormat("\"{0}\" means nothing here; there are {1}", word, known));
    }
    settings.shape.seed = static_cast<std::uint32_t>(seed);
}
