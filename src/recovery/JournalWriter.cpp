#include "JournalWriter.h"

#include "Chance.h"
#include "FileNames.h"
#include "FilePaths.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstddef>
#include <span>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// A name that no other journal has.
QString FreshName(const QString& folder, const QString& book)
{
    constexpr qsizetype LongestName = 80;
    static int number = 0;
    return folder + u'/' + ShortName(BaseNameOf(book), LongestName)
        + Now().toString(u"-yyyyMMdd-HHmmss-zzz-"_s) + QString::number(QCoreApplication::applicationPid())
        + u'-' + QString::number(++number) + u".journal"_s;
}

/// What two texts have in common at their starts and at their ends.
struct CommonText
{
    qsizetype start = 0;
    qsizetype end = 0;
};

CommonText CommonTextOf(QStringView a, QStringView b)
{
    const qsizetype shorter = std::min(a.size(), b.size());
    CommonText common;
    common.start = std::mismatch(a.begin(), a.begin() + shorter, b.begin()).first - a.begin();
    while (common.end < shorter - common.start
           && a[a.size() - 1 - common.end] == b[b.size() - 1 - common.end])
        ++common.end;
    return common;
}

/// A single line that is replaced by another is written as the difference between them.
bool IsChangeOfLine(const LineSplice& splice)
{
    return splice.removed == 1 && splice.inserted.size() == 1;
}

/// Whether the record of a batch would be larger than several pieces of a base.
bool IsLarge(const JournalBatch& batch)
{
    constexpr std::size_t Large = std::size_t(4) << 20;
    constexpr std::size_t BytesOfLine = 3; // at least
    std::size_t bytes = 0;
    for (const LineSplice& splice : batch.splices) {
        if (IsChangeOfLine(splice))
            continue;
        for (const LinePtr& line : splice.inserted)
            bytes += BytesOfLine + sizeof(char16_t) * std::size_t(line->text.size());
        if (bytes > Large)
            return true;
    }
    return false;
}

} // namespace

JournalWriter::JournalWriter(QString recoveryFolder)
    : folder(std::move(recoveryFolder))
{
}

bool JournalWriter::begin(JournalBase base)
{
    setAside();
    baseBytes = 0;
    return restart(std::move(base));
}

bool JournalWriter::restart(JournalBase base)
{
    lines.assign(std::move(base.lines));
    base.lines.clear();
    state = std::move(base);
    isBegun = true;
    isGivenUp = false;
    return writeBase();
}

bool JournalWriter::write(const JournalBatch& batch)
{
    if (!isBegun || isGivenUp)
        return !isGivenUp;
    if (IsLarge(batch)) {
        // A base is written piece by piece; the record would be in memory as a whole, and packed once more.
        for (const LineSplice& splice : batch.splices)
            lines.replace(splice.first, splice.removed, splice.inserted);
        keep(batch);
        return writeBase();
    }
    // Encoded before the lines change: a changed line is written as a difference from the old one.
    const std::string payload = encode(batch);
    if (!isUsable)
        return writeBase();
    std::uint64_t nextChecksum = checksum;
    const std::string record = MakeRecord(RecordKind::Batch, payload, nextChecksum);
    if (fileBytes + record.size() > longest())
        return writeBase();
    // After a failure, a part of the record may be in the file. A reader ignores it, and the next base
    // replaces it.
    if (!file.append(record))
        return fail(file.reason());
    checksum = nextChecksum;
    fileBytes += record.size();
    isFlushed = false;
    return true;
}

/// The journal may have twice the length of the book: a new base of up to the same length comes beside it.
std::uint64_t JournalWriter::longest() const
{
    constexpr std::uint64_t Least = 32ULL * 1024;
    const auto book = std::uint64_t(std::max<qint64>(state.facts.onDisk.bytes, 0));
    return 2 * std::max({Least, book, baseBytes});
}

bool JournalWriter::flush()
{
    if (!isBegun || isFlushed)
        return true;
    if (!file.flush())
        return fail(file.reason());
    isFlushed = true;
    return true;
}

void JournalWriter::remove()
{
    file.remove();
    setAside();
}

void JournalWriter::setAside()
{
    file = LockedFile();
    isBegun = isUsable = isGivenUp = false;
    isFlushed = true;
    lines.assign({});
    state = {};
}

void JournalWriter::giveUp(const QString& reason)
{
    isBegun = isGivenUp = true;
    fail(reason);
    lines.assign({});
}

bool JournalWriter::fail(const QString& reason)
{
    lastReason = reason;
    // The file remains locked: another process must not take it for the journal of one that has crashed.
    isUsable = false;
    return false;
}

// ---------------------------------------------------------------- the base

/// Writes the present state to a new file, which then replaces the old one.
bool JournalWriter::writeBase()
{
    if (!MakePrivateFolder(folder))
        return fail(u"the folder %1 cannot be made"_s.arg(folder));
    const QString name = file.path().isEmpty() ? FreshName(folder, state.facts.path) : file.path();
    LockedFile fresh = LockedFile::create(name + u".new"_s);
    if (!fresh) {
        // Left by a failure of this process: nobody else uses the name.
        LockedFile::open(name + u".new"_s).remove();
        fresh = LockedFile::create(name + u".new"_s);
    }
    std::uint64_t written = 0;
    if (!fresh || !appendBase(fresh, written) || !fresh.flush() || !fresh.rename(name)) {
        const QString reason = fresh.reason();
        fresh.remove();
        return fail(reason);
    }
    file = std::move(fresh);
    isUsable = true;
    fileBytes = baseBytes = written;
    isFlushed = true;
    ++bases;
    return true;
}

bool JournalWriter::appendBase(LockedFile& fresh, std::uint64_t& written)
{
    std::uint64_t sum = 0;
    const auto add = [&](std::string_view bytes) {
        written += bytes.size();
        return fresh.append(bytes);
    };
    const auto record = [&](RecordKind kind, std::string payload) {
        return add(MakeRecord(kind, std::move(payload), sum));
    };

    ByteWriter binary;
    binary.string(std::string_view(*state.binary));
    if (!add(JournalSignature) || !record(RecordKind::Facts, EncodeFacts(state.facts))
        || !record(RecordKind::Tags, EncodeTags(state.tags)) || !record(RecordKind::Binary, binary.take()))
        return false;

    constexpr std::size_t PieceBytes = 1 << 20;
    ByteWriter piece;
    for (int i = 0; i < lines.size(); ++i) {
        piece.line(*lines[i]);
        if (piece.bytes().size() < PieceBytes && i + 1 < lines.size())
            continue;
        if (!record(RecordKind::Lines, piece.take()))
            return false;
        piece = {};
    }
    ByteWriter end;
    EncodeSelection(end, state.selection);
    end.number(state.unsaved ? 1 : 0);
    if (!record(RecordKind::BaseEnd, end.take()))
        return false;
    checksum = sum;
    return true;
}

// ---------------------------------------------------------------- a batch

/// Applies a batch to the state and returns its payload.
std::string JournalWriter::encode(const JournalBatch& batch)
{
    ByteWriter writer;
    writer.string(std::string_view(EncodeTags(batch.newTags)));

    std::vector<const LineSplice*> splices;
    for (const LineSplice& splice : batch.splices) {
        // Of a line that changes several times in a row, only the last state matters.
        const bool repeated = !splices.empty() && IsChangeOfLine(splice)
            && splices.back()->first == splice.first && IsChangeOfLine(*splices.back());
        if (repeated)
            splices.back() = &splice;
        else
            splices.push_back(&splice);
    }
    writer.number(splices.size());
    for (const LineSplice* splice : splices) {
        encodeSplice(writer, *splice);
        lines.replace(splice->first, splice->removed, splice->inserted);
    }

    writer.number((batch.binary ? 1U : 0U) + (batch.facts ? 2U : 0U) + (batch.unsaved ? 4U : 0U));
    if (batch.binary)
        writer.string(std::string_view(*batch.binary));
    if (batch.facts)
        writer.string(std::string_view(EncodeFacts(*batch.facts)));
    EncodeSelection(writer, batch.selection);
    keep(batch);
    return writer.take();
}

/// Applies a batch to the state, except its lines.
void JournalWriter::keep(const JournalBatch& batch)
{
    state.tags.insert(state.tags.end(), batch.newTags.begin(), batch.newTags.end());
    if (batch.binary)
        state.binary = batch.binary;
    if (batch.facts)
        state.facts = *batch.facts;
    state.selection = batch.selection;
    state.unsaved = batch.unsaved;
}

void JournalWriter::encodeSplice(ByteWriter& writer, const LineSplice& splice)
{
    const bool oneLine = IsChangeOfLine(splice);
    writer.number(std::uint64_t(oneLine ? SpliceForm::Change : SpliceForm::Lines));
    writer.number(std::uint64_t(splice.first));
    if (!oneLine) {
        writer.number(std::uint64_t(splice.removed));
        writer.number(splice.inserted.size());
        for (const LinePtr& line : splice.inserted)
            writer.line(*line);
        return;
    }
    const Line& before = *lines[splice.first];
    const Line& after = *splice.inserted.front();
    const CommonText common = CommonTextOf(before.text, after.text);
    const qsizetype shift = after.text.size() - before.text.size();
    const std::size_t fewer = std::min(before.marks.size(), after.marks.size());
    std::size_t start = 0;
    while (start < fewer && before.marks[start] == after.marks[start])
        ++start;
    std::size_t end = 0;
    const auto isShifted = [&](const Mark& old, Mark now) {
        now.pos -= int(shift);
        return old == now;
    };
    while (
        end < fewer - start
        && isShifted(before.marks[before.marks.size() - 1 - end], after.marks[after.marks.size() - 1 - end]))
        ++end;

    writer.number(after.block);
    writer.number(std::uint64_t(common.start));
    writer.number(std::uint64_t(common.end));
    writer.string(
        QStringView(after.text).sliced(common.start, after.text.size() - common.start - common.end));
    writer.number(start);
    writer.number(end);
    writer.marks(std::span<const Mark>(after.marks).subspan(start, after.marks.size() - end - start));
}

} // namespace vmk
