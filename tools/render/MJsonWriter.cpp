// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MJsonWriter.h"

#include "core/MText.h"

#include <cmath>

void MJsonWriter::BeginObject(std::string_view key) { Open(key, '{'); }
void MJsonWriter::EndObject() { Close('}'); }
void MJsonWriter::BeginArray(std::string_view key) { Open(key, '['); }
void MJsonWriter::EndArray() { Close(']'); }

void MJsonWriter::Member(std::string_view key, std::string_view text) {
    Start(key);
    Quote(text);
}

void MJsonWriter::Member(std::string_view key, double number) {
    Start(key);
    text_ += std::isfinite(number) ? MText::WriteNumber(number) : "null";
}

void MJsonWriter::Member(std::string_view key, bool truth) {
    Start(key);
    text_ += truth ? "true" : "false";
}

void MJsonWriter::Open(std::string_view key, char bracket) {
    Start(key);
    text_ += bracket;
    needsComma_ = false;
}

void MJsonWriter::Close(char bracket) {
    text_ += bracket;
    needsComma_ = true;
}

void MJsonWriter::Start(std::string_view key) {
    if (needsComma_) text_ += ", ";
    needsComma_ = true;
    if (key.empty()) return;
    Quote(key);
    text_ += ": ";
}

void MJsonWriter::Quote(std::string_view text) {
    constexpr std::string_view kHexDigits = "0123456789abcdef";
    text_ += '"';
    for (const char letter : text) {
        const auto code = static_cast<unsigned char>(letter);
        if (letter == '"' || letter == '\\') {
            text_ += '\\';
            text_ += letter;
        } else if (code < 0x20) {
            text_ += "\\u00";
            text_ += kHexDigits[code >> 4];
            text_ += kHexDigits[code & 15];
        } else {
            text_ += letter;
        }
    }
    text_ += '"';
}
