#include "OutputPaths.h"

#include "BookItem.h"
#include "FileNames.h"
#include "Files.h"
#include "FolderListing.h"

#include <QStringList>

#include <array>
#include <filesystem>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr qsizetype LongestNameBytes = 255;

/// Windows gives these names, with any extension, to devices.
bool IsDeviceName(const QString& name)
{
    const QString stem = name.section(u'.', 0, 0).trimmed().toUpper();
    if (stem == u"CON" || stem == u"PRN" || stem == u"AUX" || stem == u"NUL")
        return true;
    return stem.size() == 4 && (stem.startsWith(u"COM") || stem.startsWith(u"LPT")) && stem[3].isDigit();
}

/// Shortens the stem of a name; the extension is kept.
QString Shortened(QString name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    QString extension = dot > 0 ? name.mid(dot) : QString();
    constexpr qsizetype LongestExtension = 16;
    if (extension.size() > LongestExtension)
        extension.clear();
    name.chop(extension.size());
    while ((name + extension).toUtf8().size() > LongestNameBytes)
        name.chop(name.size() > 1 && name.back().isLowSurrogate() ? 2 : 1);
    return name + extension;
}

/// One part of a member's name as a possible file name.
QString SafeName(QString name)
{
    for (QChar& c : name)
        if (c.category() == QChar::Other_Control || u":*?\"<>|\\"_s.contains(c))
            c = u'_';
    if (name == u"..")
        return u"__"_s;
    const auto endsInBlank = [&name] { return name.endsWith(u'.') || name.endsWith(u' '); };
    if (endsInBlank())
        name.back() = u'_';
    if (IsDeviceName(name))
        name.prepend(u'_');
    if (name.size() > LongestNameBytes / 4)
        name = Shortened(name);
    // A short name can end in the middle of the long one.
    if (endsInBlank())
        name.back() = u'_';
    return name;
}

} // namespace

std::string OutputPathOfFile(std::string_view systemPath)
{
    namespace fs = std::filesystem;
    fs::path path = fs::path(systemPath).lexically_normal();
    if (!path.empty() && *path.begin() == "..") {
        std::error_code failed;
        const fs::path here = fs::current_path(failed);
        path = (here / path).lexically_normal();
    }
    std::string relative;
    for (const fs::path& part : path.relative_path()) {
        if (part.empty() || part == "." || part == "..")
            continue;
        relative += (relative.empty() ? "" : "/") + part.native();
    }
    return relative;
}

QString OutputPathOfMember(const QString& member)
{
    QStringList safe;
    for (const QString& part : member.split(u'/', Qt::SkipEmptyParts))
        if (part != u".")
            safe += SafeName(part);
    return safe.isEmpty() ? u"_"_s : safe.join(u'/');
}

QString OutputFolder::pathFor(const std::string& relative, QString* problem)
{
    const size_t slash = relative.rfind('/');
    const std::string_view folder
        = std::string_view(relative).substr(0, slash == std::string::npos ? 0 : slash);
    if (!makeFolders(folder, problem))
        return {};
    QString path = root + u'/' + NameOfPath(relative);
    if (!IsLinkAt(EncodeFileName(path).toStdString()))
        return path;
    *problem = u"is a link and is not followed: "_s + path;
    return {};
}

QString OutputFolder::pathFor(const BookItem& book, QString* problem)
{
    QString path = pathFor(book.output, problem);
    if (path.isEmpty() || book.packed || !IsSameAt(book.path, EncodeFileName(path).toStdString()))
        return path;
    *problem = u"not written: the path of the result is that of the book"_s;
    return {};
}

bool OutputFolder::makeFolders(std::string_view relative, QString* problem)
{
    if (!made.empty() && made == relative)
        return true;
    QString folder = root;
    for (size_t end = 0; end < relative.size();) {
        const size_t start = end == 0 ? 0 : end + 1;
        end = std::min(relative.find('/', start), relative.size());
        folder += u'/' + NameOfPath(std::string(relative.substr(start, end - start)));
        if (IsLinkAt(EncodeFileName(folder).toStdString())) {
            *problem = u"is a link and is not followed: "_s + folder;
            return false;
        }
        if (!MakeOneFolder(folder)) {
            *problem = u"the folder cannot be made: "_s + folder;
            return false;
        }
    }
    made = relative;
    return true;
}

bool TakenPaths::take(std::string_view path)
{
    // A hash of 64 bits: two different paths of a million have the same one with a chance of 1 to 37 million.
    constexpr uint64_t Basis = 0xcbf29ce484222325;
    constexpr uint64_t Prime = 0x100000001b3;
    uint64_t hash = Basis;
    for (const char c : path)
        hash = (hash ^ static_cast<unsigned char>(c)) * Prime;
    return hashes.insert(hash).second;
}

} // namespace vmk
