// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MParameterTable.h"

#include "tools/render/MJsonWriter.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace {

using Row = std::array<std::string, 5>;

const char* KindName(ParameterKind kind) {
    switch (kind) {
        case ParameterKind::Float:
            return "number";
        case ParameterKind::Int:
            return "integer";
        case ParameterKind::Enum:
            return "choice";
        case ParameterKind::Bool:
            return "switch";
        case ParameterKind::Group:
            return "panel";
        case ParameterKind::Object:
            break;
    }
    return "object";
}

std::string Range(const ParameterDefinition& record) {
    if (record.choices.empty()) {
        const bool isSwitch =
            record.kind == ParameterKind::Bool || record.kind == ParameterKind::Group;
        return record.DisplayText(record.minimum) + (isSwitch ? ", " : " to ") +
               record.DisplayText(record.maximum);
    }
    if (record.choices.size() > 4) return record.choices.front() + " to " + record.choices.back();
    std::string text;
    for (const std::string& choice : record.choices) text += (text.empty() ? "" : ", ") + choice;
    return text;
}

}  // namespace

std::string MWriteParameterTable(const MParameterList& list, bool allBands) {
    std::vector<Row> rows = {{"Key", "Name", "Range", "Default", "Value"}};
    for (int i = 0; i < list.Count(); ++i) {
        if (!allBands && list[i].isOfEffect && list[i].band > 1) continue;
        const ParameterDefinition& record = list.Record(i);
        rows.push_back({list[i].key, list[i].name, Range(record),
                        record.DisplayText(record.defaultValue),
                        record.DisplayText(record.Value())});
    }
    const bool isComplete = static_cast<int>(rows.size()) == list.Count() + 1;
    std::array<std::size_t, 5> widths = {};
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    std::string text;
    for (const Row& row : rows) {
        for (std::size_t i = 0; i + 1 < row.size(); ++i) {
            text += row[i] + std::string(widths[i] + 2 - row[i].size(), ' ');
        }
        text += row.back() + "\n";
    }
    if (!isComplete) text += "The other bands have what band 1 has; --all shows it.\n";
    return text;
}

std::string MWriteParameterJson(const MParameterList& list) {
    MJsonWriter json;
    json.BeginArray();
    for (int i = 0; i < list.Count(); ++i) {
        const ParameterDefinition& record = list.Record(i);
        json.BeginObject();
        json.Member("index", i);
        json.Member("key", list[i].key);
        json.Member("name", list[i].name);
        json.Member("band", list[i].band);
        json.Member("presetKey", record.key);
        json.Member("kind", KindName(record.kind));
        json.Member("minimum", record.minimum);
        json.Member("maximum", record.maximum);
        json.Member("default", record.defaultValue);
        json.Member("value", record.Value());
        json.Member("minimumText", record.DisplayText(record.minimum));
        json.Member("maximumText", record.DisplayText(record.maximum));
        json.Member("defaultText", record.DisplayText(record.defaultValue));
        json.Member("valueText", record.DisplayText(record.Value()));
        json.BeginArray("choices");
        for (const std::string& choice : record.choices) json.Member({}, choice);
        json.EndArray();
        json.EndObject();
    }
    json.EndArray();
    return json.Text();
}
