#include "SessionRecorder.h"

#include "BookOnDisk.h"
#include "BookVariables.h"
#include "Chance.h"
#include "LineStore.h"

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <new>
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

std::vector<LinePtr> LoadedLines(const DisplayDocument& document)
{
    std::vector<LinePtr> all;
    all.reserve(std::size_t(document.loadedLineCount()));
    for (int i = 0; i < document.loadedLineCount(); ++i)
        all.push_back(document.linePtr(i));
    return all;
}

bool HaveSameText(const std::vector<LinePtr>& a, const std::vector<LinePtr>& b)
{
    return std::ranges::equal(a, b, [](const LinePtr& x, const LinePtr& y) { return x->text == y->text; });
}

} // namespace

SessionRecorder::SessionRecorder(DisplayDocument& recorded, const QString& recoveryFolder,
                                 std::function<void(const QString&)> reportProblem)
    : document(recorded)
    , report(std::move(reportProblem))
    , journal(recoveryFolder, [this](const QString& problem) {
        QMetaObject::invokeMethod(
            &context,
            [this, problem] {
                if (!problem.isEmpty())
                    catchUp.start();
                report(problem);
            },
            Qt::QueuedConnection);
    })
{
    constexpr std::chrono::milliseconds Pause(5000);
    catchUp.setSingleShot(true);
    catchUp.setInterval(Pause);
    QObject::connect(&catchUp, &QTimer::timeout, &context, [this] {
        isBehind = isBehind || (recording && journal.isBehind());
        publish();
    });
    document.setRecorder(this);
    passLines();
}

SessionRecorder::~SessionRecorder()
{
    document.setRecorder(nullptr);
    endSession();
}

// ---------------------------------------------------------------- the session

void SessionRecorder::documentReset()
{
    isReplaced = true;
    endSession();
    isReplaced = false;
    passLines();
}

/// Passes the lines that are loaded to the thread; the others follow.
void SessionRecorder::passLines()
{
    isBehind = false;
    try {
        journal.setLines(LoadedLines(document));
    } catch (const std::bad_alloc&) {
        isBehind = true;
    }
}

void SessionRecorder::endSession()
{
    publish();
    if (recording)
        journal.end(unsaved && !kept ? JournalThread::End::SetAside : JournalThread::End::Remove);
    recording = unsaved = kept = false;
    binaryCopy.reset();
}

bool SessionRecorder::hasUnsavedText()
{
    publish();
    return unsaved;
}

void SessionRecorder::begin(std::function<void()> whenSafe)
{
    static_cast<void>(document.lineCount()); // loads all lines
    recording = true;
    try {
        journal.begin(stateOfBook(), std::move(whenSafe));
    } catch (const std::bad_alloc&) {
        fallBehind();
    }
}

/// Passes the whole state of the book to the thread.
void SessionRecorder::restart()
{
    isBehind = false;
    if (!recording) {
        journal.setLines(LoadedLines(document));
        if (unsaved)
            begin({});
    } else {
        JournalBase base = stateOfBook();
        base.lines = LoadedLines(document);
        journal.restart(std::move(base));
    }
}

/// The state of the book without its lines.
JournalBase SessionRecorder::stateOfBook()
{
    JournalBase base;
    base.facts = FactsOfOpenBook(document, CurrentBook);
    knownTags = 0;
    takeNewTags(base.tags);
    const bool isCopied = binaryCopy && binaryCopy->size() == BinaryPart.size();
    base.binary = isCopied ? std::move(binaryCopy) : std::make_shared<const std::string>(BinaryPart);
    binaryCopy.reset();
    base.selection = document.selection();
    base.unsaved = unsaved;
    return base;
}

/// Memory has run out while an edit was recorded. Whether it has changed the text is not known.
void SessionRecorder::fallBehind()
{
    isBehind = unsaved = true;
    isGathering = kept = false;
    gathered = {};
    replaced.clear();
    try {
        catchUp.start();
    } catch (const std::bad_alloc&) {
        // The next edit does it.
    }
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
    try {
        JournalBatch saved;
        saved.facts = FactsOfOpenBook(document, path);
        saved.selection = document.selection();
        saved.unsaved = false;
        journal.add(std::move(saved));
    } catch (const std::bad_alloc&) {
        isBehind = true;
    }
}

void SessionRecorder::noteBinaryPartChange()
{
    binaryCopy.reset();
    publish();
    unsaved = true;
    kept = false;
    if (!recording)
        return begin({});
    try {
        gathered.binary = std::make_shared<const std::string>(BinaryPart);
        gather();
    } catch (const std::bad_alloc&) {
        fallBehind();
    }
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
    try {
        gathered.splices.push_back({first, int(removed.size()), inserted});
        if (!unsaved)
            replaced.push_back(removed);
        gather();
    } catch (const std::bad_alloc&) {
        fallBehind();
    }
}

void SessionRecorder::linesLoaded(int, const std::vector<LinePtr>& loaded)
{
    try {
        journal.appendLines(loaded);
    } catch (const std::bad_alloc&) {
        isBehind = true;
    }
}

void SessionRecorder::selectionChanged()
{
    try {
        if (recording)
            gather();
    } catch (const std::bad_alloc&) {
        // The next edit records the selection too.
    }
}

/// Has what is gathered published by the event loop.
void SessionRecorder::gather()
{
    constexpr std::size_t Stride = 64;
    if (!isGathering) {
        QMetaObject::invokeMethod(
            &context, [this] { publishIfReady(); }, Qt::QueuedConnection);
        isGathering = true;
        gatheringSince = TickMilliseconds();
    } else if (gathered.splices.size() % Stride == 0 && document.isComplete()
               && TickMilliseconds() - gatheringSince > LongestCommand) {
        publish();
    }
}

/// A change of a page that is not complete yet waits for it. A large binary part is copied between events.
void SessionRecorder::publishIfReady()
{
    constexpr std::chrono::milliseconds Wait(20);
    if (!isGathering)
        return;
    const bool isComplete = document.isComplete();
    const bool mayBegin = !recording && !gathered.splices.empty();
    try {
        if (isComplete && (!mayBegin || copyBinaryPart()))
            return publish();
        QTimer::singleShot(isComplete ? std::chrono::milliseconds(0) : Wait, &context,
                           [this] { publishIfReady(); });
    } catch (const std::bad_alloc&) {
        fallBehind();
    }
}

/// Copies the next piece of `BinaryPart`. \return true if all of it is copied
bool SessionRecorder::copyBinaryPart()
{
    constexpr std::size_t PieceBytes = 4 << 20;
    if (!binaryCopy || binaryCopy->size() > BinaryPart.size()) {
        binaryCopy = std::make_shared<std::string>();
        binaryCopy->reserve(BinaryPart.size());
    }
    binaryCopy->append(BinaryPart, binaryCopy->size(), PieceBytes);
    return binaryCopy->size() == BinaryPart.size();
}

void SessionRecorder::publish()
{
    if (!isGathering && !isBehind)
        return;
    // A journal begins with all lines, which this loads.
    static_cast<void>(document.lineCount());
    try {
        publishGathered();
    } catch (const std::bad_alloc&) {
        fallBehind();
    }
}

void SessionRecorder::publishGathered()
{
    isGathering = false;
    if (!gathered.splices.empty()) {
        unsaved = unsaved || changesText();
        replaced.clear();
        kept = false;
    }
    JournalBatch batch = std::exchange(gathered, {});
    // The lines of another page are passed when that page begins.
    if (isBehind)
        return isReplaced ? void() : restart();
    if (!recording) {
        journal.add(std::move(batch));
        if (unsaved)
            begin({});
        binaryCopy.reset();
        return;
    }
    takeNewTags(batch.newTags);
    batch.selection = document.selection();
    batch.unsaved = unsaved;
    journal.add(std::move(batch));
}

/// Returns true if the gathered edits together have changed the text, not only its marks: a command may
/// remove a text and insert it again.
bool SessionRecorder::changesText() const
{
    bool eachKeepsText = true;
    for (std::size_t i = 0; i < replaced.size() && eachKeepsText; ++i)
        eachKeepsText = HaveSameText(replaced[i], gathered.splices[i].inserted);
    return !eachKeepsText && (isReplaced || changesTextTogether());
}

bool SessionRecorder::changesTextTogether() const
{
    int count = document.lineCount();
    const int countNow = count;
    for (const LineSplice& splice : gathered.splices)
        count -= int(splice.inserted.size()) - splice.removed;
    if (count != countNow)
        return true;
    int first = count;
    int after = count; // lines after all edits
    for (const LineSplice& splice : gathered.splices) {
        first = std::min(first, splice.first);
        after = std::min(after, count - splice.first - splice.removed);
        count += int(splice.inserted.size()) - splice.removed;
    }
    std::vector<LinePtr> now;
    for (int i = first; i < countNow - after; ++i)
        now.push_back(document.linePtr(i));
    LineStore before;
    before.assign(now);
    for (std::size_t i = gathered.splices.size(); i-- > 0;) {
        const LineSplice& splice = gathered.splices[i];
        before.replace(splice.first - first, int(splice.inserted.size()), replaced[i]);
    }
    return !HaveSameText(before.take(), now);
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
