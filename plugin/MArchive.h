// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MXML.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Travels with a node through the storing operations and says which way values go, so that one
/// traversal serves saving and loading. Writing sets the attribute from the member; reading sets
/// the member from the attribute and leaves it alone where the attribute is absent or means
/// nothing: states of older versions load without an error.
class MArchive {
public:
    enum class Direction { Read = 0, Write = 1 };
    /// What a reader has before it reads the first key.
    enum class Base {
        Current,   ///< what is in force
        Defaults,  ///< so that a state sounds the same whatever was before it
    };

    /// [any]
    explicit MArchive(Direction direction, Base base = Base::Current) noexcept
        : direction_(direction), base_(base) {}
    virtual ~MArchive() = default;
    MArchive(const MArchive&) = default;
    MArchive& operator=(const MArchive&) = default;

    bool IsWriting() const noexcept { return direction_ == Direction::Write; }
    /// For those who read into a copy: whether it starts from the defaults.
    bool StartsFromDefaults() const noexcept { return base_ == Base::Defaults; }

    /// Whether anything that was read was there: if nothing was, the tree is no state. [main]
    bool HasFound() const noexcept { return hasFound_; }
    /// Tells of a find that was not made through this archive. [main]
    void NoteFound() const noexcept { hasFound_ = true; }

    /// A whole number; a decimal text is read as the nearest one. [main]
    void Integer(MXMLNode node, std::string_view key, int& value) const;
    /// A switch: 1 and 0, read as on for any other number than 0. [main]
    void Switch(MXMLNode node, std::string_view key, bool& value) const;
    /// A finite number, written as the shortest text that reads back to the same. [main]
    void Number(MXMLNode node, std::string_view key, double& value) const;
    void Text(MXMLNode node, std::string_view key, std::string& value) const;

    /// The child to go on with: a new one when writing; when reading the first of that name, or a
    /// null handle, from which nothing is read. [main]
    MXMLNode Child(MXMLNode node, std::string_view name) const;
    /// The children of that name to go on with: `count` new ones when writing; when reading those
    /// that there are, `count` at most. [main]
    std::vector<MXMLNode> Children(MXMLNode node, std::string_view name, int count) const;

private:
    std::optional<std::string> Read(const MXMLNode& node, std::string_view key) const;
    std::optional<double> ReadNumber(const MXMLNode& node, std::string_view key) const;

    Direction direction_;
    Base base_;
    mutable bool hasFound_ = false;  // of the traversal, which sees a constant archive
};
