#include "RecoveryFolder.h"

#include "Chance.h"
#include "FileNames.h"
#include "FilePaths.h"
#include "FileState.h"
#include "Files.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr auto JournalEnding = ".journal"_L1;
constexpr auto DeclinedEnding = ".declined"_L1;
constexpr auto UnfinishedEnding = ".journal.new"_L1;
constexpr auto TimeFormat = "yyyy-MM-dd HH-mm-ss"_L1;

QString NotesFile(const QString& folder)
{
    return folder + u"/Unsaved texts.list"_s;
}

/// The paths of the folder's files that match, newest first.
QStringList NewestFirst(const QString& folder, const QString& pattern)
{
    std::vector<std::pair<qint64, QString>> files;
    for (const QString& name : FindFiles(folder, pattern)) {
        const QString path = folder + u'/' + name;
        files.emplace_back(StateOfFile(path).modified, path);
    }
    std::ranges::sort(files, std::greater());
    QStringList paths;
    for (const auto& [time, path] : files)
        paths.append(path);
    return paths;
}

/// The start of a path, in front of an ending, that makes a new name; numbered if the name exists.
QString FreshPath(const QString& start, const QString& ending)
{
    QString path = start + ending;
    for (int number = 2; EntryExists(path); ++number)
        path = start + u" %1"_s.arg(number) + ending;
    return path;
}

QString Declined(LockedFile& journal)
{
    const QString path = journal.path();
    // Its age counts from now on.
    QFile file(path);
    if (file.open(QIODevice::ReadWrite))
        static_cast<void>(file.setFileTime(QDateTime::currentDateTime(), QFileDevice::FileModificationTime));
    file.close();
    const QString declined
        = FreshPath(path.endsWith(JournalEnding) ? path.chopped(JournalEnding.size()) : path, DeclinedEnding);
    return journal.rename(declined) ? declined : path;
}

} // namespace

// ---------------------------------------------------------------- journals

std::optional<InterruptedSession> NewestInterruptedSession(const QString& folder, QStringList& damaged)
{
    if (!IsPrivateFolder(folder))
        return {};
    for (const QString& path : NewestFirst(folder, u'*' + JournalEnding)) {
        InterruptedSession found;
        found.time = StateOfFile(path).time();
        found.journal = LockedFile::open(path);
        if (!found.journal)
            continue;
        std::optional<RecordedSession> session = ReadJournal(found.journal.read());
        if (!session) {
            damaged.append(Declined(found.journal));
            continue;
        }
        if (!session->state.unsaved) {
            found.journal.remove();
            continue;
        }
        found.isComplete = session->isComplete;
        found.state = std::move(session->state);
        return found;
    }
    return {};
}

QString DeclineSession(InterruptedSession& session)
{
    QString path = Declined(session.journal);
    session.journal.close();
    return path;
}

void CleanRecoveryFolder(const QString& folder)
{
    // A link that somebody has planted must not lead to other files with such names.
    if (!IsPrivateFolder(folder))
        return;
    const QDateTime oldest = Now().addDays(-DaysOfDeclined);
    for (const QString& path : NewestFirst(folder, u'*' + DeclinedEnding)) {
        if (StateOfFile(path).time() < oldest)
            DeleteOneFile(path);
    }
    // The remains of a process that was killed while it began a journal or kept a text.
    for (const QString& pattern : {u'*' + UnfinishedEnding, u"* (unsaved *.fb2.new"_s, u"*.list.new"_s}) {
        for (const QString& path : NewestFirst(folder, pattern))
            LockedFile::open(path).remove();
    }
    const QStringList texts = NewestFirst(folder, u"* (unsaved *).fb2"_s);
    for (qsizetype i = MostUnsavedTexts; i < texts.size(); ++i)
        DeleteOneFile(texts[i]);
}

// ---------------------------------------------------------------- unsaved texts

namespace {

/// Appends a note; the notes only serve a status text, so that a failure is not reported.
void AppendNote(const QString& folder, const QJsonObject& note)
{
    const QString path = NotesFile(folder);
    LockedFile file = LockedFile::create(path);
    if (!file)
        file = LockedFile::open(path);
    static_cast<void>(
        file && file.append(QJsonDocument(note).toJson(QJsonDocument::Compact).toStdString() + '\n'));
}

std::vector<QJsonObject> NotesIn(LockedFile& file)
{
    std::vector<QJsonObject> notes;
    const QByteArray text = QByteArray::fromStdString(file.read());
    for (const QByteArray& line : text.split('\n'))
        notes.push_back(QJsonDocument::fromJson(line).object());
    return notes;
}

/// Drops the notes about texts that no longer exist.
void ShortenNotes(const QString& folder)
{
    constexpr qint64 Long = 64LL * 1024;
    LockedFile notes = LockedFile::open(NotesFile(folder));
    if (!notes || StateOfFile(notes.path()).bytes < Long)
        return;
    QByteArray text;
    for (const QJsonObject& note : NotesIn(notes)) {
        if (EntryExists(folder + u'/' + note[u"text"_s].toString()))
            text += QJsonDocument(note).toJson(QJsonDocument::Compact) + '\n';
    }
    LockedFile fresh = LockedFile::create(notes.path() + u".new"_s);
    if (!fresh || !fresh.append(text.toStdString()) || !fresh.flush() || !fresh.rename(notes.path()))
        fresh.remove();
}

} // namespace

QString KeepUnsavedBook(const QString& folder, const QString& book, std::string_view bytes, QString& reason)
{
    if (!MakePrivateFolder(folder)) {
        reason = u"the folder %1 cannot be made"_s.arg(folder);
        return {};
    }
    // With the ending, within the 255 bytes of a file name.
    constexpr qsizetype LongestName = 200;
    const QString name = ShortName(BaseNameOf(FileNameOf(book)), LongestName);
    QString path = FreshPath(folder + u'/' + (name.isEmpty() ? u"book"_s : name) + u" (unsaved "_s
                                 + Now().toString(TimeFormat) + u')',
                             u".fb2"_s);
    LockedFile file = LockedFile::create(path + u".new"_s);
    if (!file || !file.append(bytes) || !file.flush() || !file.rename(path)) {
        reason = file.reason();
        file.remove();
        return {};
    }
    AppendNote(folder, {{u"text"_s, FileNameOf(path)}, {u"book"_s, AbsolutePath(book)}});
    ShortenNotes(folder);
    file.close();
    CleanRecoveryFolder(folder);
    return path;
}

QString TakeNewsOfUnsavedText(const QString& folder, const QString& book)
{
    LockedFile notes = LockedFile::open(NotesFile(folder));
    if (!notes || !IsPrivateFolder(folder))
        return {};
    const QString wanted = AbsolutePath(book);
    QString news;
    for (const QJsonObject& note : NotesIn(notes)) {
        if (note[u"book"_s].toString() == wanted)
            news = note[u"text"_s].toString();
        else if (note[u"told"_s].toString() == wanted)
            news.clear();
    }
    // A note that somebody else has written may hold any path.
    if (news.isEmpty() || FileNameOf(news) != news || !EntryExists(folder + u'/' + news))
        return {};
    // The text's name keeps the note as long as the text exists.
    notes.close();
    AppendNote(folder, {{u"text"_s, news}, {u"told"_s, wanted}});
    return folder + u'/' + news;
}

} // namespace vmk
