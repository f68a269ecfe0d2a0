#include "BookWalk.h"

#include "ZipArchive.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// What the members of an archive may expand to, whatever the size of the archive.
constexpr uint64_t FreeBytes = uint64_t(64) << 20;

bool EndsWith(std::string_view name, std::string_view extension)
{
    if (name.size() < extension.size())
        return false;
    const auto lower = [](char c) { return 'A' <= c && c <= 'Z' ? char(c - 'A' + 'a') : c; };
    return std::ranges::equal(name.substr(name.size() - extension.size()), extension, {}, lower);
}

bool IsArchiveName(std::string_view name)
{
    return EndsWith(name, ".zip");
}

bool IsBookName(std::string_view name)
{
    return EndsWith(name, ".fb2");
}

bool IsWanted(std::string_view name)
{
    return IsBookName(name) || IsArchiveName(name);
}

BookItem Failed(const QString& name, const QString& failure)
{
    BookItem item;
    item.name = name;
    item.failure = failure;
    return item;
}

/// Why a member is not unpacked; empty if it is.
QString Refusal(const ZipMember& member, uint64_t largest)
{
    constexpr uint64_t NeverRefused = uint64_t(16) << 20;
    if (member.isEncrypted)
        return u"the member is encrypted"_s;
    if (member.size > largest)
        return u"refused: the member expands to %1 bytes"_s.arg(member.size);
    if (member.size > NeverRefused && member.size / MostExpansion > member.packedSize)
        return u"refused: the member expands to %1 bytes, more than %2 times its packed size"_s
            .arg(member.size)
            .arg(MostExpansion);
    return {};
}

} // namespace

struct BookWalk::Folder
{
    std::string path; // with "/" at its end
    FolderListing entries;
    size_t next = 0;
};

struct BookWalk::Archive
{
    QString name;
    std::string output; // path of its results
    std::unique_ptr<ZipArchive> zip;
    uint64_t allowance = 0; // bytes that its members may still expand to
    uint64_t next = 0;
    uint64_t end = 0;
};

BookWalk::BookWalk(BookInput what)
    : input(std::move(what))
{
    if (!input.listFile.empty())
        list = std::make_unique<NameList>(input.listFile, input.listSeparator);
}

BookWalk::~BookWalk() = default;

QString BookWalk::listProblem() const
{
    return list ? list->problem() : QString();
}

std::optional<BookItem> BookWalk::next()
{
    loadIndex.reset();
    for (;;) {
        std::optional<BookItem> item;
        if (!archives.empty())
            item = nextOfArchive();
        else if (!folders.empty())
            item = nextOfFolder();
        else if (!operand.empty())
            item = Failed(NameOfPath(std::exchange(operand, {})), u"contains no book"_s);
        else if (nextPath < input.paths.size() || list)
            item = nextOfInput();
        else
            return std::nullopt;
        if (!item)
            continue;
        operand.clear();
        return item;
    }
}

std::optional<BookItem> BookWalk::nextOfInput()
{
    std::optional<std::string> path;
    if (nextPath < input.paths.size())
        path = input.paths[nextPath++];
    else if (path = list->next(); !path) {
        const QString problem = list->problem();
        list.reset();
        if (!problem.isEmpty())
            return Failed(NameOfPath(input.listFile), u"cannot be read: "_s + problem);
        return std::nullopt;
    }
    operand = *path;
    return open(*path);
}

/// Begins a folder or an archive, or returns the book at a path.
std::optional<BookItem> BookWalk::open(const std::string& path)
{
    if (path == "-")
        return fileItem(path);
    switch (KindAt(path)) {
    case FileKind::Folder:
        return openFolder(path);
    case FileKind::File:
        return IsArchiveName(path) ? openArchive(path) : fileItem(path);
    case FileKind::None:
        for (size_t colon = path.find(':'); colon != std::string::npos; colon = path.find(':', colon + 1))
            if (IsArchiveName(path.substr(0, colon)) && KindAt(path.substr(0, colon)) == FileKind::File)
                return openMember(path, colon);
        break;
    case FileKind::Other:
        break;
    }
    return fileItem(path);
}

BookItem BookWalk::fileItem(const std::string& path) const
{
    BookItem item;
    item.name = NameOfPath(path);
    item.path = path;
    if (input.withOutputs)
        item.output = OutputPathOfFile(path);
    return item;
}

// ---------------------------------------------------------------- folders

std::optional<BookItem> BookWalk::openFolder(const std::string& path)
{
    if (!input.skippedFolder.empty() && IsSameAt(path, input.skippedFolder))
        return std::nullopt;
    QString problem;
    FolderListing entries(path, IsWanted, &problem);
    if (!problem.isEmpty())
        return Failed(NameOfPath(path), u"cannot be read: "_s + problem);
    folders.push_back({path.ends_with('/') ? path : path + '/', std::move(entries), 0});
    return std::nullopt;
}

std::optional<BookItem> BookWalk::nextOfFolder()
{
    Folder& folder = folders.back();
    if (folder.next == folder.entries.size()) {
        folders.pop_back();
        return std::nullopt;
    }
    const std::string path = folder.path + std::string(folder.entries.name(folder.next++));
    if (path.ends_with('/'))
        return openFolder(path);
    return IsArchiveName(path) ? openArchive(path) : fileItem(path);
}

// ---------------------------------------------------------------- archives

std::optional<BookItem> BookWalk::openArchive(const std::string& path)
{
    QString problem;
    std::unique_ptr<ZipArchive> zip = ZipArchive::open(path, &problem);
    if (!zip)
        return Failed(NameOfPath(path), problem);
    const uint64_t allowance = FreeBytes + MostExpansion * FileSizeAt(path);
    const uint64_t count = zip->count();
    archives.push_back({NameOfPath(path), input.withOutputs ? OutputPathOfFile(path) : std::string(),
                        std::move(zip), allowance, 0, count});
    return std::nullopt;
}

/// Begins the member that a path names, after the colon. Of several with the same name, it is the first.
std::optional<BookItem> BookWalk::openMember(const std::string& path, size_t colon)
{
    if (std::optional<BookItem> failed = openArchive(path.substr(0, colon)))
        return failed;
    const QString wanted = NameOfPath(path).mid(NameOfPath(path.substr(0, colon)).size() + 1);
    Archive& archive = archives.back();
    for (uint64_t i = 0; i < archive.end; ++i) {
        const QString name = archive.zip->member(i).name;
        // A member of an archive in the archive.
        const bool isOuter = IsArchiveName(name.toStdString()) && wanted.startsWith(name + u':');
        if (name != wanted && !isOuter)
            continue;
        archive.next = i;
        archive.end = i + 1;
        std::optional<BookItem> item = nextOfArchive();
        if (!isOuter || item || archives.size() < 2)
            return item;
        const QString innerName = wanted.mid(name.size() + 1);
        Archive& inner = archives.back();
        while (inner.next < inner.end && inner.zip->member(inner.next).name != innerName)
            ++inner.next;
        if (inner.next < inner.end) {
            inner.end = inner.next + 1;
            return nextOfArchive();
        }
        break;
    }
    archives.clear();
    return Failed(NameOfPath(path), u"the archive has no such member"_s);
}

std::optional<BookItem> BookWalk::nextOfArchive()
{
    Archive& archive = archives.back();
    if (archive.next == archive.end) {
        archives.pop_back();
        return std::nullopt;
    }
    const uint64_t index = archive.next++;
    const ZipMember member = archive.zip->member(index);
    const std::string name = member.name.toStdString();
    if (IsArchiveName(name))
        return openInner(archive, member, index);
    return IsBookName(name) ? bookOf(archive, member, index) : std::nullopt;
}

/// Counts the size of a member. Ends an archive whose members together expand too much: they can share the
/// same bytes of the archive.
std::optional<BookItem> BookWalk::spend(const ZipMember& member)
{
    const auto exhausted = std::ranges::find_if(
        archives, [&member](const Archive& archive) { return member.size > archive.allowance; });
    if (exhausted == archives.end()) {
        for (Archive& archive : archives)
            archive.allowance -= member.size;
        return std::nullopt;
    }
    for (auto archive = exhausted; archive != archives.end(); ++archive)
        archive->next = archive->end;
    return Failed(exhausted->name,
                  u"refused from %1 on: the members expand to more than %2 times the size of the archive"_s
                      .arg(member.name)
                      .arg(MostExpansion));
}

std::optional<BookItem> BookWalk::bookOf(Archive& archive, const ZipMember& member, uint64_t index)
{
    const QString name = archive.name + u':' + member.name;
    if (const QString refusal = Refusal(member, LargestMember); !refusal.isEmpty())
        return Failed(name, refusal);
    if (std::optional<BookItem> refused = spend(member))
        return refused;
    BookItem item;
    item.name = name;
    if (input.withOutputs)
        item.output = archive.output + '/' + OutputPathOfMember(member.name).toStdString();
    loadIndex = index;
    return item;
}

std::optional<BookItem> BookWalk::openInner(const Archive& outer, const ZipMember& member, uint64_t index)
{
    const QString name = outer.name + u':' + member.name;
    if (archives.size() > 1)
        return Failed(name, u"refused: an archive in an archive in an archive"_s);
    if (const QString refusal = Refusal(member, LargestInnerArchive); !refusal.isEmpty())
        return Failed(name, refusal);
    if (std::optional<BookItem> refused = spend(member))
        return refused;
    QString problem;
    const std::optional<PackedMember> packed = outer.zip->read(index, &problem);
    std::optional<std::string> bytes = packed ? Unpack(*packed, &problem) : std::nullopt;
    const uint64_t allowance = FreeBytes + MostExpansion * member.size;
    std::unique_ptr<ZipArchive> zip = bytes ? ZipArchive::ofBytes(*std::move(bytes), &problem) : nullptr;
    if (!zip)
        return Failed(name, problem);
    const uint64_t count = zip->count();
    std::string output = input.withOutputs
        ? outer.output + '/' + OutputPathOfMember(member.name).toStdString()
        : std::string();
    archives.push_back({name, std::move(output), std::move(zip), allowance, 0, count});
    return std::nullopt;
}

void BookWalk::load(BookItem& item) const
{
    if (!loadIndex || archives.empty() || !item.failure.isEmpty())
        return;
    QString problem;
    item.packed = archives.back().zip->read(*loadIndex, &problem);
    if (!item.packed)
        item.failure = problem;
}

} // namespace vmk
