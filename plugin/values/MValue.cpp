// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValue.h"

MValue::~MValue() = default;

void MValue::Reserved4() {}

void MValue::Save(MXMLNode node) const {
    node.SetAttribute("id", TypeName());
    node.SetAttribute("value", ToString());
}

bool MValue::Load(MXMLNode node) {
    if (node.Attribute("id") != TypeName()) return false;
    const std::optional<std::string> text = node.Attribute("value");
    return text && FromString(*text);
}

void MValue::Reserved8() {}

void MValue::Reserved10() {}

bool MValue::Edit(const std::string& text) { return ParseDisplayText(text); }

void MValue::Reserved19() {}

void MValue::EditorHook() {}

void MValue::Reserved21() {}

void* MValue::CreateEditor() { return nullptr; }
