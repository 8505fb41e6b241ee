// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

/// Writes JSON text member by member. Calls must nest as the text does. One thread only.
class MJsonWriter {
public:
    void BeginObject(std::string_view key = {});
    void EndObject();
    void BeginArray(std::string_view key = {});
    void EndArray();

    /// Adds a text (UTF-8), a number (a finite one; null otherwise) or a truth value; inside an
    /// array the key is empty. [main]
    void Member(std::string_view key, std::string_view text);
    void Member(std::string_view key, const char* text) { Member(key, std::string_view(text)); }
    void Member(std::string_view key, double number);
    void Member(std::string_view key, int number) { Member(key, static_cast<double>(number)); }
    void Member(std::string_view key, bool truth);

    const std::string& Text() const { return text_; }

private:
    void Open(std::string_view key, char bracket);
    void Close(char bracket);
    void Start(std::string_view key);
    void Quote(std::string_view text);

    std::string text_;
    bool needsComma_ = false;
};
