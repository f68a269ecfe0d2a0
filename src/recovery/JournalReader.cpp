#include "JournalReader.h"

#include "Checksum.h"
#include "Compression.h"
#include "DisplayDocument.h"
#include "Files.h"
#include "LineStore.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

namespace vmk {

namespace {

/// One record: its kind and its payload, decompressed.
struct Record
{
    RecordKind kind = RecordKind::Facts;
    std::string payload;
};

/// Takes valid records from the start of a text.
class RecordReader
{
public:
    explicit RecordReader(std::string_view bytes)
        : all(bytes)
        , used(JournalSignature.size())
    {
        isGood = bytes.starts_with(JournalSignature);
    }

    std::optional<Record> next()
    {
        constexpr std::size_t HeadBytes = 5;
        constexpr std::size_t TailBytes = 8;
        if (!isGood || all.size() - used < HeadBytes + TailBytes)
            return {};
        const std::string_view rest = all.substr(used);
        const auto length = static_cast<std::size_t>(ByteReader(rest).fixed(4));
        if (rest.size() - HeadBytes - TailBytes < length)
            return {};
        const std::string_view covered = rest.substr(4, length + 1);
        const std::uint64_t sum = Checksum(covered, checksum);
        if (ByteReader(rest.substr(HeadBytes + length)).fixed(TailBytes) != sum)
            return {};
        checksum = sum;
        used += HeadBytes + length + TailBytes;
        return unpacked(covered);
    }

    [[nodiscard]] std::size_t usedBytes() const { return used; }

private:
    static std::optional<Record> unpacked(std::string_view covered)
    {
        constexpr auto Packed = static_cast<unsigned>(RecordKind::Packed);
        const unsigned kind = static_cast<unsigned char>(covered.front());
        const std::string_view payload = covered.substr(1);
        Record record;
        record.kind = static_cast<RecordKind>(kind & ~Packed);
        if ((kind & Packed) == 0) {
            record.payload = payload;
            return record;
        }
        std::optional<std::string> text = Decompress(payload, MaxFileBytes);
        if (!text)
            return {};
        record.payload = *std::move(text);
        return record;
    }

    std::string_view all;
    std::size_t used;
    std::uint64_t checksum = 0;
    bool isGood = false;
};

/// Whether a line has the form that the document promises for each of its lines.
bool IsSound(const Line& line, std::size_t tagCount)
{
    const auto isBreak = [](QChar c) { return c == u'\r' || c == u'\n'; };
    if (line.block > tagCount || std::ranges::any_of(line.text, isBreak))
        return false;
    std::vector<TagId> open;
    int last = 0;
    for (const Mark& mark : line.marks) {
        if (mark.pos < last || mark.pos > line.text.size() || mark.tag == NoTag || mark.tag > tagCount)
            return false;
        last = mark.pos;
        if (mark.open != 0) {
            open.push_back(mark.tag);
            continue;
        }
        if (open.empty() || open.back() != mark.tag)
            return false;
        open.pop_back();
    }
    return open.empty();
}

/// The state of a session while its journal is read.
class Replay
{
public:
    /// Reads the base. Returns false if it is not complete.
    bool readBase(RecordReader& records)
    {
        bool hasFacts = false;
        while (std::optional<Record> record = records.next()) {
            ByteReader reader(record->payload);
            if (record->kind == RecordKind::Facts) {
                state.facts = DecodeFacts(reader);
                hasFacts = true;
            } else if (record->kind == RecordKind::Tags) {
                state.tags = DecodeTags(reader);
                // The lines before them were checked with other tags.
                if (!state.lines.empty())
                    reader.fail();
            } else if (record->kind == RecordKind::Binary) {
                state.binary = std::make_shared<const std::string>(reader.bytes());
            } else if (record->kind == RecordKind::Lines) {
                readLines(reader);
            } else if (record->kind == RecordKind::BaseEnd) {
                state.selection = DecodeSelection(reader);
                state.unsaved = reader.number() != 0;
                lines.assign(std::exchange(state.lines, {}));
                return reader.isGood() && hasFacts && state.binary && lines.size() > 0;
            } else {
                reader.fail();
            }
            if (!reader.isGood())
                return false;
        }
        return false;
    }

    /// Applies a batch. Returns false if it does not fit; the state is then unusable.
    bool apply(const Record& record)
    {
        ByteReader reader(record.payload);
        if (record.kind != RecordKind::Batch)
            return false;
        ByteReader tagReader(reader.bytes());
        for (JournalTag& tag : DecodeTags(tagReader))
            state.tags.push_back(std::move(tag));
        // Each splice has at least two bytes.
        const int splices = reader.count(reader.left() / 2);
        for (int i = 0; i < splices && reader.isGood(); ++i) {
            if (!applySplice(reader))
                reader.fail();
        }
        const std::uint64_t flags = reader.number();
        if ((flags & 1U) != 0)
            state.binary = std::make_shared<const std::string>(reader.bytes());
        if ((flags & 2U) != 0) {
            ByteReader factsReader(reader.bytes());
            state.facts = DecodeFacts(factsReader);
            if (!factsReader.isGood())
                reader.fail();
        }
        state.unsaved = (flags & 4U) != 0;
        state.selection = DecodeSelection(reader);
        return reader.isGood() && tagReader.isGood();
    }

    JournalBase take()
    {
        state.lines.clear();
        state.lines.reserve(std::size_t(lines.size()));
        for (int i = 0; i < lines.size(); ++i)
            state.lines.push_back(lines[i]);
        return std::move(state);
    }

private:
    LinePtr soundLine(Line line, ByteReader& reader) const
    {
        if (!IsSound(line, state.tags.size()))
            reader.fail();
        return MakeLine(std::move(line));
    }

    void readLines(ByteReader& reader)
    {
        while (!reader.atEnd() && reader.isGood())
            state.lines.push_back(soundLine(reader.line(), reader));
    }

    bool applySplice(ByteReader& reader)
    {
        const std::uint64_t form = reader.number();
        const int first = reader.count(std::size_t(lines.size()));
        if (form == std::uint64_t(SpliceForm::Change))
            return first < lines.size() && applyChange(first, reader);
        if (form != std::uint64_t(SpliceForm::Lines))
            return false;
        const int removed = reader.count(std::size_t(lines.size() - first));
        const int inserted = reader.count(reader.left());
        std::vector<LinePtr> made;
        for (int i = 0; i < inserted && reader.isGood(); ++i)
            made.push_back(soundLine(reader.line(), reader));
        if (!reader.isGood() || lines.size() - removed + inserted < 1)
            return false;
        lines.replace(first, removed, made);
        return true;
    }

    bool applyChange(int index, ByteReader& reader)
    {
        constexpr std::size_t Most = 0x7fffffff;
        const Line& before = *lines[index];
        Line after;
        after.block = TagId(reader.count(Most));
        const int start = reader.count(std::size_t(before.text.size()));
        const int end = reader.count(std::size_t(before.text.size() - start));
        const QString middle = reader.string();
        const int firstMarks = reader.count(before.marks.size());
        const int lastMarks = reader.count(before.marks.size() - std::size_t(firstMarks));
        const std::vector<Mark> changed = reader.marks();
        if (!reader.isGood())
            return false;

        after.text = before.text.left(start) + middle + before.text.right(end);
        const auto shift = int(after.text.size() - before.text.size());
        std::vector<Mark> marks(before.marks.begin(), before.marks.begin() + firstMarks);
        marks.insert(marks.end(), changed.begin(), changed.end());
        for (auto mark = before.marks.end() - lastMarks; mark != before.marks.end(); ++mark) {
            marks.push_back(*mark);
            marks.back().pos += shift;
        }
        after.marks = marks;
        const LinePtr made = soundLine(std::move(after), reader);
        if (!reader.isGood())
            return false;
        lines.replace(index, 1, {made});
        return true;
    }

    JournalBase state;
    LineStore lines;
};

} // namespace

namespace {

/// Reads the base and at most that many batches. Returns nothing if the base is damaged or a batch does not
/// fit, whose number `batches` then receives.
std::optional<RecordedSession> ReadBatches(std::string_view bytes, std::size_t& batches)
{
    RecordReader records(bytes);
    Replay replay;
    const std::size_t most = std::exchange(batches, 0);
    if (!replay.readBase(records))
        return {};
    RecordedSession session;
    session.usedBytes = records.usedBytes();
    for (; batches < most; ++batches) {
        const std::optional<Record> record = records.next();
        if (!record)
            break;
        if (!replay.apply(*record))
            return {};
        session.usedBytes = records.usedBytes();
    }
    session.isComplete = session.usedBytes == bytes.size();
    session.state = replay.take();
    return session;
}

} // namespace

std::optional<RecordedSession> ReadJournal(std::string_view bytes)
{
    std::size_t batches = std::numeric_limits<std::size_t>::max();
    std::optional<RecordedSession> session = ReadBatches(bytes, batches);
    // A batch with a valid checksum that does not fit was not written by this program. What is before it
    // counts.
    if (!session)
        session = ReadBatches(bytes, batches);
    return session;
}

std::vector<LinePtr> LinesOfSession(const JournalBase& session, TagTable& tags)
{
    std::vector<TagId> numbers = {NoTag};
    for (const JournalTag& tag : session.tags)
        numbers.push_back(tags.intern(tag.name, tag.attributes));

    std::vector<LinePtr> lines;
    lines.reserve(session.lines.size());
    for (const LinePtr& line : session.lines) {
        Line made = *line;
        made.block = numbers[made.block];
        std::vector<Mark> marks = made.marks.toVector();
        for (Mark& mark : marks)
            mark.tag = numbers[mark.tag] & 0x7FFFFFFF;
        made.marks = marks;
        lines.push_back(MakeLine(std::move(made)));
    }
    return lines;
}

void ShowSession(const JournalBase& session, DisplayDocument& document)
{
    document.loadPage(session.facts.pageFront + "</BODY></HTML>");
    document.splice(0, document.lineCount(), LinesOfSession(session, document.tags()),
                    {{0, 0}, {0, 0}, {0, 0}, false});
    document.setSelection(session.selection.anchor, session.selection.focus);
}

} // namespace vmk
