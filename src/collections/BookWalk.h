#pragma once

#include "BookItem.h"
#include "FolderListing.h"
#include "NameList.h"
#include "OutputPaths.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vmk {

/// What a run reads.
struct BookInput
{
    /// Files, folders, archives, "ARCHIVE.zip:MEMBER", and "-" for standard input, in the bytes of the
    /// system.
    std::vector<std::string> paths = {};
    std::string listFile = {}; ///< a list of further paths; "-" for standard input; empty for none
    char listSeparator = '\n'; ///< or NUL
    std::string skippedFolder = {}; ///< a folder that the walk does not enter, such as that of the results
    bool withOutputs = false; ///< set `BookItem::output`
};

/// A member with a larger content is refused, in bytes.
inline constexpr uint64_t LargestMember = uint64_t(512) << 20;
/// An archive in an archive is unpacked in memory up to this size, in bytes.
inline constexpr uint64_t LargestInnerArchive = uint64_t(256) << 20;
/// A content that is more than so many times larger than the archive stores it is refused; text is at most
/// some 20 times larger.
inline constexpr uint64_t MostExpansion = 200;

/// The books of files, folders, archives and lists, one after another.
///
/// A folder has the books in the order of the bytes of their paths, with all its subfolders: files "*.fb2",
/// and in archives "*.zip" the members "*.fb2", in the order of the archive. An archive in an archive is
/// opened, one level. The walk keeps only the listings of the folders that it is in and the directory of one
/// archive. It does not end at anything damaged: each damaged folder, archive or member is one item with a
/// `failure`.
class BookWalk
{
public:
    explicit BookWalk(BookInput what);
    ~BookWalk();

    /// Returns the next book, without its content; nothing at the end.
    [[nodiscard]] std::optional<BookItem> next();
    /// Completes the last item: reads the bytes of a member from its archive. On failure sets `failure`.
    void load(BookItem& item) const;

    /// The error message of the list of paths; empty if there is none.
    [[nodiscard]] QString listProblem() const;

private:
    struct Folder;
    struct Archive;

    [[nodiscard]] std::optional<BookItem> nextOfInput();
    [[nodiscard]] std::optional<BookItem> nextOfFolder();
    [[nodiscard]] std::optional<BookItem> nextOfArchive();
    [[nodiscard]] std::optional<BookItem> open(const std::string& path);
    [[nodiscard]] std::optional<BookItem> openFolder(const std::string& path);
    [[nodiscard]] std::optional<BookItem> openArchive(const std::string& path);
    [[nodiscard]] std::optional<BookItem> openMember(const std::string& path, size_t colon);
    [[nodiscard]] std::optional<BookItem> openInner(const Archive& outer, const ZipMember& member,
                                                    uint64_t index);
    [[nodiscard]] std::optional<BookItem> spend(const ZipMember& member);
    [[nodiscard]] std::optional<BookItem> bookOf(Archive& archive, const ZipMember& member, uint64_t index);
    [[nodiscard]] BookItem fileItem(const std::string& path) const;

    BookInput input;
    size_t nextPath = 0;
    std::unique_ptr<NameList> list;
    std::string operand; // the path of the input that is walked; empty if a book of it was found
    std::vector<Folder> folders; // from the outermost
    std::vector<Archive> archives; // at most an archive and one in it
    std::optional<uint64_t> loadIndex; // of the last item, in the innermost archive
};

} // namespace vmk
