// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// An element of an MXMLTree: a light handle, valid as long as its tree. A null handle stands for a
/// missing element: it has no attributes and no children and ignores writes.
class MXMLNode {
public:
    MXMLNode() = default;

    /// Whether the element exists.
    explicit operator bool() const noexcept { return element_ != nullptr; }

    std::string Name() const;

    /// The attribute's text; empty when the element has none of that name. [main]
    std::optional<std::string> Attribute(std::string_view key) const;
    /// Sets the attribute, which is added at the end when it is new. [main]
    void SetAttribute(std::string_view key, std::string_view text);

    /// The first child of that name, or a null handle. [main]
    MXMLNode Child(std::string_view name) const;
    /// Every child element in document order. [main]
    std::vector<MXMLNode> Children() const;
    /// Adds a child at the end. [main]
    MXMLNode AddChild(std::string_view name);
    /// Adds a copy of an element of any tree, with all below it, at the end. [main]
    MXMLNode AddCopy(const MXMLNode& element);
    /// Removes the children of that name, with all below them. [main]
    void RemoveChildren(std::string_view name);
    /// Removes one child, whose handle is not to be used again. [main]
    void RemoveChild(const MXMLNode& child);

private:
    friend class MXMLTree;
    explicit MXMLNode(void* element) : element_(element) {}

    void* element_ = nullptr;  // the XML package's own node
};

/// An XML document with one root element. Text in and out is UTF-8.
class MXMLTree {
public:
    /// A tree whose root has the name `rootName`. [main]
    explicit MXMLTree(std::string_view rootName);
    ~MXMLTree();
    MXMLTree(MXMLTree&& other) noexcept;
    MXMLTree& operator=(MXMLTree&& other) noexcept;

    /// Elements and attributes that a text may have, and how deep elements may stand in each other.
    static constexpr int kMostParts = 1 << 18;
    static constexpr int kDeepest = 64;

    /// Parses `text`. Throws MException: "The XML does not contain any elements." for a text
    /// without an element, "The XML is too large." beyond `mostParts` or kDeepest, the package's
    /// message and the place for anything else. Of attributes with the same name the first counts.
    /// [main]
    static MXMLTree Parse(std::string_view text, int mostParts = kMostParts);

    /// A tree of its own that holds a copy of `element`. [main]
    static MXMLTree CopyOf(const MXMLNode& element);

    MXMLNode Root() const;
    /// The tree as indented text with an XML declaration. [main]
    std::string Write() const;

private:
    struct Document;
    explicit MXMLTree(std::unique_ptr<Document> document);

    std::unique_ptr<Document> document_;
};
