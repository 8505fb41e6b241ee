// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MXML.h"

#include "core/MException.h"
#include "core/MFormat.h"

#include <pugixml.hpp>

#include <algorithm>
#include <utility>

namespace {

constexpr const char* kTooLarge = "The XML is too large.";

pugi::xml_node Wrap(void* element) {
    return pugi::xml_node(static_cast<pugi::xml_node_struct*>(element));
}

/// Whether a tree of `text` stays within reason. Asked before parsing, which takes many times the
/// memory of the text; texts of attributes with these characters count as well, deliberately.
bool IsSmall(std::string_view text, int mostParts) {
    return std::count_if(text.begin(), text.end(), [](char c) { return c == '<' || c == '='; }) <=
           mostParts;
}

/// Looks for elements that stand too deep.
class DepthWalker : public pugi::xml_tree_walker {
public:
    bool for_each(pugi::xml_node&) override {  // NOLINT(readability-identifier-naming)
        return depth() <= MXMLTree::kDeepest;
    }
};

/// Collects what the package writes.
class TextWriter : public pugi::xml_writer {
public:
    void write(const void* data, size_t size) override {  // NOLINT(readability-identifier-naming)
        text.append(static_cast<const char*>(data), size);
    }

    std::string text;
};

}  // namespace

std::string MXMLNode::Name() const { return Wrap(element_).name(); }

std::optional<std::string> MXMLNode::Attribute(std::string_view key) const {
    const pugi::xml_attribute attribute = Wrap(element_).attribute(std::string(key).c_str());
    if (!attribute) return std::nullopt;
    return attribute.value();
}

void MXMLNode::SetAttribute(std::string_view key, std::string_view text) {
    if (element_ == nullptr) return;
    pugi::xml_node node = Wrap(element_);
    const std::string name(key);
    pugi::xml_attribute attribute = node.attribute(name.c_str());
    if (!attribute) attribute = node.append_attribute(name.c_str());
    attribute.set_value(std::string(text).c_str());
}

MXMLNode MXMLNode::Child(std::string_view name) const {
    return MXMLNode(Wrap(element_).child(std::string(name).c_str()).internal_object());
}

std::vector<MXMLNode> MXMLNode::Children() const {
    std::vector<MXMLNode> children;
    for (const pugi::xml_node child : Wrap(element_).children()) {
        if (child.type() == pugi::node_element)
            children.push_back(MXMLNode(child.internal_object()));
    }
    return children;
}

MXMLNode MXMLNode::AddChild(std::string_view name) {
    pugi::xml_node node = Wrap(element_);
    return MXMLNode(node.append_child(std::string(name).c_str()).internal_object());
}

MXMLNode MXMLNode::AddCopy(const MXMLNode& element) {
    return MXMLNode(Wrap(element_).append_copy(Wrap(element.element_)).internal_object());
}

void MXMLNode::RemoveChildren(std::string_view name) {
    const std::string text(name);
    while (Wrap(element_).remove_child(text.c_str())) {
    }
}

void MXMLNode::RemoveChild(const MXMLNode& child) {
    Wrap(element_).remove_child(Wrap(child.element_));
}

struct MXMLTree::Document {
    pugi::xml_document document;
};

MXMLTree::MXMLTree(std::string_view rootName) : document_(std::make_unique<Document>()) {
    document_->document.append_child(std::string(rootName).c_str());
}

MXMLTree::MXMLTree(std::unique_ptr<Document> document) : document_(std::move(document)) {}

MXMLTree::~MXMLTree() = default;
MXMLTree::MXMLTree(MXMLTree&& other) noexcept = default;
MXMLTree& MXMLTree::operator=(MXMLTree&& other) noexcept = default;

MXMLTree MXMLTree::Parse(std::string_view text, int mostParts) {
    if (!IsSmall(text, mostParts)) throw MException(kTooLarge);
    auto document = std::make_unique<Document>();
    const pugi::xml_parse_result result =
        document->document.load_buffer(text.data(), text.size(), pugi::parse_default);
    // A text of blanks and comments has no element either, whatever the package calls it.
    const bool hasElement = static_cast<bool>(document->document.document_element());
    if (result.status == pugi::status_no_document_element || (result && !hasElement)) {
        throw MException("The XML does not contain any elements.");
    }
    if (!result) {
        throw MException(
            MFormat("{0} (at byte {1})", result.description(), static_cast<int>(result.offset)));
    }
    DepthWalker walker;
    if (!document->document.traverse(walker)) throw MException(kTooLarge);
    return MXMLTree(std::move(document));
}

MXMLTree MXMLTree::CopyOf(const MXMLNode& element) {
    auto document = std::make_unique<Document>();
    document->document.append_copy(Wrap(element.element_));
    return MXMLTree(std::move(document));
}

MXMLNode MXMLTree::Root() const {
    return MXMLNode(document_->document.document_element().internal_object());
}

std::string MXMLTree::Write() const {
    TextWriter writer;
    writer.text = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";
    document_->document.save(writer, "  ", pugi::format_indent | pugi::format_no_declaration,
                             pugi::encoding_utf8);
    return std::move(writer.text);
}
