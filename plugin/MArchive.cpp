// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MArchive.h"

#include "core/MText.h"

#include <cmath>
#include <limits>

std::optional<std::string> MArchive::Read(const MXMLNode& node, std::string_view key) const {
    std::optional<std::string> text = node.Attribute(key);
    if (text) NoteFound();
    return text;
}

std::optional<double> MArchive::ReadNumber(const MXMLNode& node, std::string_view key) const {
    const std::optional<std::string> text = Read(node, key);
    return text ? MText::ReadNumber(*text) : std::nullopt;
}

void MArchive::Integer(MXMLNode node, std::string_view key, int& value) const {
    if (IsWriting()) {
        node.SetAttribute(key, std::to_string(value));
        return;
    }
    const std::optional<double> read = ReadNumber(node, key);
    const bool fits = read && std::fabs(*read) <= std::numeric_limits<int>::max();
    if (fits) value = static_cast<int>(std::lround(*read));
}

void MArchive::Switch(MXMLNode node, std::string_view key, bool& value) const {
    int number = value ? 1 : 0;
    Integer(node, key, number);
    value = number != 0;
}

void MArchive::Number(MXMLNode node, std::string_view key, double& value) const {
    if (IsWriting()) {
        node.SetAttribute(key, MText::WriteNumber(value));
        return;
    }
    const std::optional<double> read = ReadNumber(node, key);
    if (read && std::isfinite(*read)) value = *read;
}

void MArchive::Text(MXMLNode node, std::string_view key, std::string& value) const {
    if (IsWriting()) {
        node.SetAttribute(key, value);
        return;
    }
    if (const std::optional<std::string> text = Read(node, key)) value = *text;
}

MXMLNode MArchive::Child(MXMLNode node, std::string_view name) const {
    if (IsWriting()) return node.AddChild(name);
    const MXMLNode child = node.Child(name);
    if (child) NoteFound();
    return child;
}

std::vector<MXMLNode> MArchive::Children(MXMLNode node, std::string_view name, int count) const {
    std::vector<MXMLNode> children;
    if (IsWriting()) {
        for (int i = 0; i < count; ++i) children.push_back(node.AddChild(name));
        return children;
    }
    for (const MXMLNode child : node.Children()) {
        if (static_cast<int>(children.size()) == count) break;
        if (child.Name() == name) children.push_back(child);
    }
    return children;
}
