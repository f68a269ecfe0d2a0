#pragma once

#include "Files.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Files and folders by the bytes of their names: names in a library are not always valid in the encoding of
/// the system, and such files can still be read.
namespace vmk {

/// Reads a complete file, like `ReadContent`.
[[nodiscard]] FileContent ReadContentAt(const std::string& systemPath);

/// Returns the kind of file at the path, like `KindOfFile`.
[[nodiscard]] FileKind KindAt(const std::string& systemPath);

/// Whether both paths are the same existing file or folder.
[[nodiscard]] bool IsSameAt(const std::string& a, const std::string& b);

/// Whether the path itself is a link.
[[nodiscard]] bool IsLinkAt(const std::string& systemPath);

/// Returns the size of a file in bytes; 0 if it is missing.
[[nodiscard]] uint64_t FileSizeAt(const std::string& systemPath);

/// The entries of one folder, sorted: a run over nested listings has the order of the bytes of whole paths.
/// Needs about the memory of the names themselves.
class FolderListing
{
public:
    /// Lists the subfolders of a folder and those of its files that `isWanted` accepts. A link to a file is a
    /// file; a link to a folder is skipped, so that a listing cannot be endless. Devices and pipes are
    /// skipped. \param problem  the system's error message on failure
    FolderListing(const std::string& systemPath, const std::function<bool(std::string_view name)>& isWanted,
                  QString* problem);

    [[nodiscard]] size_t size() const { return starts.size(); }
    /// Returns a name; that of a folder ends with "/".
    [[nodiscard]] std::string_view name(size_t index) const { return names.data() + starts[index]; }

private:
    void add(std::string_view name, bool isFolder);

    std::string names; // each ends with a NUL
    std::vector<size_t> starts;
};

} // namespace vmk
