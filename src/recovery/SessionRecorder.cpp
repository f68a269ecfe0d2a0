#include "SessionRecorder.h"

#include "BookOnDisk.h"
#include "BookVariables.h"
#include "Chance.h"

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>

namespace vmk {

namespace {

/// Changes of a command that does not return to the event loop are passed on after this time.
constexpr int64_t LongestCommand = 500;

BookFacts FactsOfOpenBook(const DisplayDocument& document, const QString& path)
{
    BookFacts facts;
    facts.path = path;
    if (OpenBookOnDisk.path == path) {
        facts.onDisk = OpenBookOnDisk.state;
        facts.checksum = OpenBookOnDisk.checksum;
    }
    facts.pageFront = document.pageFront();
    facts.binaryCodePage = BinaryCodePage;
    facts.workCodePage = WorkCodePage;
    facts.fileCodePage = FileCodePage;
    facts.keepsText = BookKeepsText;
    facts.hasCharRefs = BookHasCharRefs;
    facts.workEncodingName = WorkEncodingName;
    facts.workMetaTag = WorkMetaTag;
    facts.fileEncodingName = FileEncodingName;
    facts.fileMetaTag = FileMetaTag;
    facts.xmlDeclaration = XmlDeclaration;
    return facts;
}

} // namespace

SessionRecorder::SessionRecorder(DisplayDocument& recorded, const QString& recoveryFolder,
                                 std::function<void(const QString&)> reportProblem)
    : document(recorded)
    , report(std::move(reportProblem))
    , journal(recoveryFolder, [this](const QString& problem) {
        QMetaObject::invokeMethod(
            &context, [this, problem] { report(problem); }, Qt::QueuedConnection);
    })
{
    document.setRecorder(this);
    readLines();
}

SessionRecorder::~SessionRecorder()
{
    document.setRecorder(nullptr);
    endSession();
}

// ---------------------------------------------------------------- the session

void SessionRecorder::documentReset()
{
    endSession();
    readLines();
}

void SessionRecorder::readLines()
{
    std::vector<LinePtr> all;
    all.reserve(std::size_t(document.lineCount()));
    for (int i = 0; i < document.lineCount(); ++i)
        all.push_back(document.linePtr(i));
    lines.assign(std::move(all));
}

void SessionRecorder::endSession()
{
    publish();
    if (recording)
        journal.end(unsaved && !kept ? JournalThread::End::SetAside : JournalThread::End::Remove);
    recording = unsaved = kept = false;
}

bool SessionRecorder::hasUnsavedText()
{
    publish();
    return unsaved;
}

void SessionRecorder::begin(std::function<void()> whenSafe)
{
    static_cast<void>(document.lineCount()); // loads all lines
    JournalBase base;
    base.facts = FactsOfOpenBook(document, CurrentBook);
    knownTags = 0;
    takeNewTags(base.tags);
    base.binary = std::make_shared<const std::string>(BinaryPart);
    base.lines.reserve(std::size_t(lines.size()));
    for (int i = 0; i < lines.size(); ++i)
        base.lines.push_back(lines[i]);
    base.selection = document.selection();
    base.unsaved = unsaved;
    recording = true;
    journal.begin(std::move(base), std::move(whenSafe));
}

void SessionRecorder::beginUnsaved(std::function<void()> whenSafe)
{
    publish();
    unsaved = true;
    if (recording)
        return;
    begin([this, whenSafe = std::move(whenSafe)] {
        QMetaObject::invokeMethod(&context, whenSafe, Qt::QueuedConnection);
    });
}

void SessionRecorder::noteSaved(const QString& path)
{
    publish();
    unsaved = kept = false;
    if (!recording)
        return;
    JournalBatch saved;
    saved.facts = FactsOfOpenBook(document, path);
    saved.selection = document.selection();
    saved.unsaved = false;
    journal.add(std::move(saved));
}

void SessionRecorder::noteBinaryPartChange()
{
    publish();
    unsaved = true;
    kept = false;
    if (!recording)
        return begin({});
    gathered.binary = std::make_shared<const std::string>(BinaryPart);
    gather();
}

void SessionRecorder::waitUntilWritten()
{
    publish();
    journal.waitUntilWritten();
}

// ---------------------------------------------------------------- edits

void SessionRecorder::linesChanged(int first, const std::vector<LinePtr>& removed,
                                   const std::vector<LinePtr>& inserted)
{
    gathered.splices.push_back({first, int(removed.size()), inserted});
    gather();
}

void SessionRecorder::linesLoaded(int, const std::vector<LinePtr>& loaded)
{
    lines.append(loaded);
}

void SessionRecorder::selectionChanged()
{
    if (recording)
        gather();
}

/// Has what is gathered published by the event loop.
void SessionRecorder::gather()
{
    constexpr std::size_t Stride = 64;
    if (!isGathering) {
        isGathering = true;
        gatheringSince = TickMilliseconds();
        QMetaObject::invokeMethod(
            &context, [this] { publishIfComplete(); }, Qt::QueuedConnection);
    } else if (gathered.splices.size() % Stride == 0
               && TickMilliseconds() - gatheringSince > LongestCommand) {
        publish();
    }
}

/// A change of a page that is not complete yet waits for it.
void SessionRecorder::publishIfComplete()
{
    constexpr std::chrono::milliseconds Wait(20);
    if (document.isComplete())
        publish();
    else
        QTimer::singleShot(Wait, &context, [this] { publishIfComplete(); });
}

void SessionRecorder::publish()
{
    if (!isGathering)
        return;
    // A journal begins with all lines, which this loads.
    static_cast<void>(document.lineCount());
    isGathering = false;
    if (!gathered.splices.empty()) {
        if (unsaved)
            applySplices();
        else
            unsaved = applySplicesAndCompare();
        kept = false;
    }
    JournalBatch batch = std::exchange(gathered, {});
    if (!recording) {
        if (unsaved)
            begin({});
        return;
    }
    takeNewTags(batch.newTags);
    batch.selection = document.selection();
    batch.unsaved = unsaved;
    journal.add(std::move(batch));
}

void SessionRecorder::applySplices()
{
    for (const LineSplice& splice : gathered.splices)
        lines.replace(splice.first, splice.removed, splice.inserted);
}

/// Returns true if the gathered edits together have changed the text, not only its marks: a command may
/// remove a text and insert it again.
bool SessionRecorder::applySplicesAndCompare()
{
    int count = lines.size();
    int first = count;
    int after = count; // lines after all edits
    for (const LineSplice& splice : gathered.splices) {
        first = std::min(first, splice.first);
        after = std::min(after, count - splice.first - splice.removed);
        count += int(splice.inserted.size()) - splice.removed;
    }
    std::vector<LinePtr> before;
    for (int i = first; i < lines.size() - after; ++i)
        before.push_back(lines[i]);
    applySplices();
    const int now = lines.size() - after - first;
    if (now != int(before.size()))
        return true;
    for (int i = 0; i < now; ++i) {
        if (lines[first + i]->text != before[std::size_t(i)]->text)
            return true;
    }
    return false;
}

/// The document numbers its tags from 1 and never removes one.
void SessionRecorder::takeNewTags(std::vector<JournalTag>& tags)
{
    const TagTable& table = document.tags();
    for (int id = knownTags + 1; id < table.size(); ++id) {
        const Tag& tag = table[TagId(id)];
        tags.push_back({tag.name, tag.attributes});
    }
    knownTags = std::max(knownTags, table.size() - 1);
}

} // namespace vmk
