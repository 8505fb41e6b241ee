// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MAutomationFile.h"

#include "core/MFormat.h"
#include "tools/render/MFileContents.h"
#include "tools/render/MRenderFailure.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>

namespace {

using Json = nlohmann::json;

/// Runs `job`; its failures then begin with the place.
template <class Job>
auto At(const std::string& place, Job&& job) {
    try {
        return std::forward<Job>(job)();
    } catch (const MRenderFailure& failure) {
        throw MRenderFailure(failure.Code(), place + ": " + failure.Text());
    }
}

Json Parse(const std::string& text) {
    try {
        return Json::parse(text);
    } catch (const Json::parse_error& error) {
        // The position counts bytes, of which the last was one too many.
        const std::size_t read = std::min(error.byte, text.size());
        const auto end = text.begin() + static_cast<std::ptrdiff_t>(read > 0 ? read - 1 : 0);
        const auto lines = std::count(text.begin(), end, '\n');
        const auto lineStart = std::find(std::make_reverse_iterator(end), text.rend(), '\n').base();
        FailUsage(MFormat("no JSON near line {0}, column {1}", static_cast<int>(lines) + 1,
                          static_cast<int>(end - lineStart) + 1));
    } catch (const Json::exception&) {
        FailUsage("a number is too large");
    }
}

void CheckKeys(const Json& object, const char* what,
               std::initializer_list<std::string_view> known) {
    if (!object.is_object()) FailUsage(MFormat("{0} is an object in braces", what));
    std::string list;
    for (const std::string_view key : known) {
        list += MFormat("{0}\"{1}\"", list.empty() ? "" : ", ", key);
    }
    for (const auto& [key, value] : object.items()) {
        if (std::find(known.begin(), known.end(), key) != known.end()) continue;
        FailUsage(MFormat("unknown \"{0}\"; {1} has {2}", key, what, list));
    }
}

/// The index of the text at `key` among `choices`; `absent` when there is none.
int ReadChoice(const Json& object, const char* key, std::initializer_list<const char*> choices,
               int absent) {
    const auto found = object.find(key);
    if (found == object.end()) return absent;
    std::string list;
    int index = 0;
    for (const char* choice : choices) {
        if (*found == choice) return index;
        list += MFormat("{0}\"{1}\"", index++ == 0 ? "" : " or ", choice);
    }
    FailUsage(MFormat("\"{0}\" is {1}", key, list));
}

MTimeUnit ReadUnit(const Json& object, MTimeUnit absent) {
    return static_cast<MTimeUnit>(
        ReadChoice(object, "unit", {"seconds", "samples", "beats"}, static_cast<int>(absent)));
}

const Json& ReadArray(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_array()) {
        FailUsage(MFormat("\"{0}\" must be a list in brackets", key));
    }
    return *found;
}

class LaneReader {
public:
    LaneReader(const MSettingReader& reader, MTimeUnit unit) : reader_(reader), unit_(unit) {}

    MRenderLane Read(const Json& lane) {
        CheckKeys(lane, "a lane", {"parameter", "points", "curve", "unit"});
        const auto name = lane.find("parameter");
        if (name == lane.end() || !name->is_string()) FailUsage("\"parameter\" must be a name");
        parameters_ = reader_.List().Find(name->get<std::string>());

        MRenderLane result;
        result.unit = ReadUnit(lane, unit_);
        result.isLinear = ReadChoice(lane, "curve", {"step", "linear"}, 0) == 1;
        if (result.isLinear) CheckGlides();
        const Json& points = ReadArray(lane, "points");
        for (std::size_t i = 0; i < points.size(); ++i) {
            At(MFormat("point {0}", static_cast<int>(i) + 1), [&] {
                MRenderPoint point = ReadPoint(points[i]);
                if (result.isLinear && point.writes.size() != parameters_.size()) {
                    FailUsage("a linear lane cannot glide to a note");
                }
                if (!result.points.empty() && point.time < result.points.back().time) {
                    FailUsage("its time is before that of the point ahead of it");
                }
                result.points.push_back(std::move(point));
            });
        }
        return result;
    }

private:
    void CheckGlides() const {
        for (const int index : parameters_) {
            const ParameterKind kind = reader_.List().Record(index).kind;
            if (kind == ParameterKind::Float || kind == ParameterKind::Int) continue;
            FailUsage(reader_.List()[index].name + " cannot glide; its curve is \"step\"");
        }
    }

    MRenderPoint ReadPoint(const Json& point) const {
        CheckKeys(point, "a point", {"time", "value"});
        const auto time = point.find("time");
        if (time == point.end() || !time->is_number() || time->get<double>() < 0) {
            FailUsage("\"time\" must be a number from 0 on");
        }
        const auto value = point.find("value");
        if (value == point.end()) FailUsage("\"value\" is missing");
        return {time->get<double>(), ReadValue(*value)};
    }

    std::vector<MRenderWrite> ReadValue(const Json& value) const {
        if (value.is_string()) return reader_.ReadText(parameters_, value.get<std::string>());
        if (value.is_number()) return reader_.ReadNumber(parameters_, value.get<double>());
        if (value.is_boolean())
            return reader_.ReadText(parameters_, value.get<bool>() ? "On" : "Off");
        if (value.is_object() && value.size() == 1 && value.contains("normalised") &&
            value["normalised"].is_number()) {
            return reader_.ReadPosition(parameters_, value["normalised"].get<double>());
        }
        FailUsage("\"value\" must be a text, a number, true, false or {\"normalised\": 0..1}");
    }

    const MSettingReader& reader_;
    MTimeUnit unit_;
    std::vector<int> parameters_;  // of the lane being read
};

std::vector<MRenderLane> ReadLanes(const Json& root, const MSettingReader& reader) {
    MTimeUnit unit = MTimeUnit::Seconds;
    if (!root.is_array()) {
        CheckKeys(root, "the file, when it is no list of lanes,", {"unit", "lanes"});
        unit = ReadUnit(root, unit);
    }
    const Json& lanes = root.is_array() ? root : ReadArray(root, "lanes");
    LaneReader laneReader(reader, unit);
    std::vector<MRenderLane> result;
    for (std::size_t i = 0; i < lanes.size(); ++i) {
        result.push_back(At(MFormat("lane {0}", static_cast<int>(i) + 1),
                            [&] { return laneReader.Read(lanes[i]); }));
    }
    return result;
}

}  // namespace

std::vector<MRenderLane> MReadAutomation(const std::filesystem::path& path,
                                         const MSettingReader& reader) {
    const std::string text = MReadFileContents(path);
    return At(path.string(), [&] { return ReadLanes(Parse(text), reader); });
}
