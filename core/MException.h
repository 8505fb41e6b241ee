// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <exception>
#include <string>

/// A failure whose text a user can read. Every failure that the plug-in raises itself is one; what
/// else is thrown comes from the standard library or a package. [any]
class MException : public std::exception {
public:
    explicit MException(std::string text) : text_(std::move(text)) {}
    ~MException() override;

    const std::string& Text() const noexcept { return text_; }
    const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_;
};
