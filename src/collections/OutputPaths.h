#pragma once

#include <QString>

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

/// Where a run over a collection writes its results: below one folder, under the paths of the input.
namespace vmk {

struct BookItem;

/// Returns the path of a result below the output folder, for a book that is a file or an archive. It is the
/// path as the user named it, without a leading "/" and without "." and "..". A path that leads out of the
/// current folder is made absolute first.
[[nodiscard]] std::string OutputPathOfFile(std::string_view systemPath);

/// Returns the path of a result below that of its archive, for a member. The name comes from the archive and
/// is not trusted: the path has no "..", does not begin with "/", and each part of it is a possible file name
/// on any system, at most 255 bytes long, and not the name of a device.
[[nodiscard]] QString OutputPathOfMember(const QString& member);

/// The folder of the results of a run.
class OutputFolder
{
public:
    explicit OutputFolder(QString folder)
        : root(std::move(folder))
    {
    }

    /// Makes the folders for a result.
    /// \param relative  a path below the folder, from the functions above
    /// \param problem   the reason on failure
    /// \return the path of the result; empty if it cannot be written, also because a link leads elsewhere
    [[nodiscard]] QString pathFor(const std::string& relative, QString* problem);
    /// The same for the result of a book, which must not be the book itself.
    [[nodiscard]] QString pathFor(const BookItem& book, QString* problem);

private:
    [[nodiscard]] bool makeFolders(std::string_view relative, QString* problem);

    QString root;
    std::string made; // the last folder that exists and is below `root`
};

/// The paths of the results of one run, which differ for two books with the same path. Needs some 16 bytes
/// for each path.
class TakenPaths
{
public:
    /// Returns false if the path is that of an earlier book.
    [[nodiscard]] bool take(std::string_view path);

private:
    std::unordered_set<uint64_t> hashes;
};

} // namespace vmk
