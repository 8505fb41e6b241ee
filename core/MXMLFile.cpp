// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MXMLFile.h"

#include "core/MException.h"
#include "core/MFailureReporter.h"
#include "core/MFileLock.h"
#include "core/MFormat.h"

#include <optional>
#include <system_error>
#include <utility>

namespace fs = std::filesystem;

MXMLFile::MXMLFile(fs::path file, std::string rootName)
    : file_(std::move(file)), rootName_(std::move(rootName)) {}

MXMLTree MXMLFile::Read() const {
    std::error_code error;
    if (!fs::exists(file_, error)) return MXMLTree(rootName_);
    try {
        if (const auto text = MFiles::Read(file_, kLargest)) return Parse(*text);
        return MXMLTree(rootName_);
    } catch (const MException&) {
        // Looked at once more under the lock: another process may just have mended it.
        const MFileLock lock(LockFile());
        return ReadOrSetAside();
    }
}

void MXMLFile::Update(const std::function<void(MXMLNode root)>& change) const {
    std::error_code error;
    fs::create_directories(file_.parent_path(), error);
    const MFileLock lock(LockFile());
    const MXMLTree tree = ReadOrSetAside();
    change(tree.Root());
    const std::string text = tree.Write();
    if (text.size() > kLargest) throw MException("The XML is too large.");
    Parse(text);  // what could not be read again would be set aside with all that was in it
    MFiles::Replace(file_, text);
}

MXMLTree MXMLFile::Parse(const std::string& text) const {
    MXMLTree tree = MXMLTree::Parse(text, kMostParts);
    if (tree.Root().Name() == rootName_) return tree;
    throw MException(MFormat("<{0}> instead of <{1}>", tree.Root().Name(), rootName_));
}

MXMLTree MXMLFile::ReadOrSetAside() const {
    std::string reason = "too large";
    std::error_code error;
    const bool isLarge = fs::file_size(file_, error) > kLargest && !error;
    if (!isLarge) {
        // A file that cannot be read may well be sound: that failure is passed on.
        const auto text = MFiles::Read(file_, kLargest);
        if (!text) return MXMLTree(rootName_);
        try {
            return Parse(*text);
        } catch (const MException& exception) {
            reason = exception.Text();
        }
    }
    const fs::path aside = MFiles::SetAside(file_);
    MFailureReporter::Report(MFormat("\"{0}\" is damaged ({1}). It was renamed to \"{2}\".",
                                     MFiles::ToText(file_), reason, MFiles::ToText(aside)));
    return MXMLTree(rootName_);
}

fs::path MXMLFile::LockFile() const { return fs::path(file_) += ".lock"; }
