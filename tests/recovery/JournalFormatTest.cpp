#include "JournalFormat.h"
#include "JournalReader.h"

#include "DisplayDocument.h"
#include "QtPrinting.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

/// Journals with valid checksums and any content: what somebody writes who knows the format.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

using Records = std::vector<std::pair<RecordKind, std::string>>;

std::string JournalOf(const Records& records)
{
    std::string journal(JournalSignature);
    std::uint64_t sum = 0;
    for (const auto& [kind, payload] : records)
        journal += MakeRecord(kind, payload, sum);
    return journal;
}

std::string LinesPayload(const std::vector<Line>& lines)
{
    ByteWriter writer;
    for (const Line& line : lines)
        writer.line(line);
    return writer.take();
}

/// A base with one tag and these lines; the last record ends it.
Records BaseWith(const std::vector<Line>& lines)
{
    ByteWriter binary;
    binary.string(std::string_view("<binary/>"));
    ByteWriter end;
    EncodeSelection(end, {{0, 1}, {0, 2}});
    end.number(1);
    return {{RecordKind::Facts, EncodeFacts({})},
            {RecordKind::Tags, EncodeTags({{u"B"_s, QString()}, {u"I"_s, QString()}})},
            {RecordKind::Binary, binary.take()},
            {RecordKind::Lines, LinesPayload(lines)},
            {RecordKind::BaseEnd, end.take()}};
}

/// The parts of a batch, each of which can be damaged.
struct BatchParts
{
    std::string tags = EncodeTags({});
    std::vector<std::string> splices;
    unsigned flags = 4;
    std::string rest; ///< between the flags and the selection
};

std::string BatchPayload(const BatchParts& parts)
{
    ByteWriter writer;
    writer.string(std::string_view(parts.tags));
    writer.number(parts.splices.size());
    std::string payload = writer.take();
    for (const std::string& splice : parts.splices)
        payload += splice;
    ByteWriter end;
    end.number(parts.flags);
    payload += end.take() + parts.rest;
    ByteWriter selection;
    EncodeSelection(selection, {});
    return payload + selection.take();
}

std::string SpliceOf(SpliceForm form, int first, int removed, const std::vector<Line>& lines)
{
    ByteWriter writer;
    writer.number(std::uint64_t(form));
    writer.number(std::uint64_t(first));
    writer.number(std::uint64_t(removed));
    writer.number(lines.size());
    return writer.take() + LinesPayload(lines);
}

/// The page after a batch; empty if the batch was refused.
QString TextAfter(RecordKind kind, const BatchParts& parts)
{
    Records records = BaseWith({{NoTag, u"one"_s, {}}, {NoTag, u"two"_s, {}}});
    records.emplace_back(kind, BatchPayload(parts));
    const std::optional<RecordedSession> found = ReadJournal(JournalOf(records));
    EXPECT_TRUE(found);
    if (!found || !found->isComplete)
        return {};
    QStringList lines;
    for (const LinePtr& line : found->state.lines)
        lines.append(line->text);
    return lines.isEmpty() ? u"(no line)"_s : lines.join(u'|');
}

// ---------------------------------------------------------------- values

TEST(ByteReader, ReturnsWhatTheWriterTook)
{
    ByteWriter writer;
    for (const std::uint64_t value : {0ULL, 127ULL, 128ULL, 16'383ULL, 16'384ULL, ~0ULL})
        writer.number(value);
    writer.fixed(0x1234567890ULL, 5);
    writer.string(u"слово"_s);
    writer.string(std::string_view("bytes"));
    ByteReader reader(writer.bytes());
    for (const std::uint64_t value : {0ULL, 127ULL, 128ULL, 16'383ULL, 16'384ULL, ~0ULL})
        EXPECT_EQ(reader.number(), value);
    EXPECT_EQ(reader.fixed(5), 0x1234567890ULL);
    EXPECT_EQ(reader.string(), u"слово"_s);
    EXPECT_EQ(reader.bytes(), "bytes");
    EXPECT_TRUE(reader.isGood() && reader.atEnd());
}

TEST(ByteReader, ANumberOf127HasOneByte)
{
    ByteWriter writer;
    writer.number(127);
    EXPECT_EQ(writer.bytes().size(), 1U);
    writer.number(128);
    EXPECT_EQ(writer.bytes().size(), 3U);
}

TEST(ByteReader, RefusesANumberAboveItsLimit)
{
    ByteWriter writer;
    writer.number(10);
    writer.number(0x80000000U);
    EXPECT_EQ(ByteReader(writer.bytes()).count(10), 10);
    ByteReader above(writer.bytes());
    EXPECT_EQ(above.count(9), 0);
    EXPECT_FALSE(above.isGood());
    ByteReader large(std::string_view(writer.bytes()).substr(1));
    EXPECT_EQ(large.count(~std::size_t(0)), 0);
    EXPECT_FALSE(large.isGood());
}

TEST(ByteReader, RefusesBytesBeyondTheEnd)
{
    ByteReader bytes("\x05"
                     "abc");
    EXPECT_EQ(bytes.bytes(), "");
    EXPECT_FALSE(bytes.isGood());
    ByteReader fixed("abc");
    EXPECT_EQ(fixed.fixed(4), 0U);
    EXPECT_FALSE(fixed.isGood());
    ByteReader empty("");
    EXPECT_EQ(empty.number(), 0U);
    EXPECT_FALSE(empty.isGood());
}

TEST(ByteReader, RefusesHalfACharacter)
{
    ByteReader reader("\x03"
                      "abc");
    EXPECT_EQ(reader.string(), QString());
    EXPECT_FALSE(reader.isGood());
}

TEST(ByteReader, RefusesAMarkWhoseTagHasMoreThan32Bits)
{
    ByteWriter writer;
    writer.number(1);
    writer.number(0);
    writer.number((1ULL << 33U) + 3);
    ByteReader reader(writer.bytes());
    static_cast<void>(reader.marks());
    EXPECT_FALSE(reader.isGood());
}

TEST(ByteReader, ReturnsNothingAfterAFailure)
{
    ByteReader reader("\x01\x02\x03");
    reader.fail();
    EXPECT_EQ(reader.number(), 0U);
    EXPECT_EQ(reader.fixed(1), 0U);
    EXPECT_EQ(reader.bytes(), "");
}

TEST(JournalFormat, FactsAreReadAsWritten)
{
    BookFacts facts;
    facts.path = u"/книга.fb2"_s;
    facts.onDisk.bytes = 7;
    facts.onDisk.modified = -5;
    facts.onDisk.device = 3;
    facts.onDisk.inode = 4;
    facts.checksum = ~0ULL;
    facts.pageFront = "front";
    facts.binaryCodePage = 1251;
    facts.workCodePage = 1250;
    facts.fileCodePage = 65'001;
    facts.workEncodingName = "a";
    facts.workMetaTag = "b";
    facts.fileEncodingName = "c";
    facts.fileMetaTag = "d";
    facts.xmlDeclaration = "e";
    for (const auto& [keepsText, hasCharRefs] : {std::pair(true, false), std::pair(false, true)}) {
        facts.keepsText = keepsText;
        facts.hasCharRefs = hasCharRefs;
        const std::string bytes = EncodeFacts(facts);
        ByteReader reader(bytes);
        const BookFacts read = DecodeFacts(reader);
        EXPECT_TRUE(reader.isGood() && reader.atEnd());
        EXPECT_EQ(read.keepsText, keepsText);
        EXPECT_EQ(read.hasCharRefs, hasCharRefs);
        EXPECT_EQ(read.onDisk.modified, -5);
        EXPECT_EQ(EncodeFacts(read), bytes);
    }
}

TEST(JournalFormat, ALongRecordIsCompressedIfThatMakesItShorter)
{
    std::uint64_t sum = 0;
    EXPECT_LT(MakeRecord(RecordKind::Binary, std::string(10'000, 'a'), sum).size(), 1'000U);
    sum = 0;
    EXPECT_GT(MakeRecord(RecordKind::Binary, std::string(100, 'a'), sum).size(), 100U);
    std::string noise;
    std::uint64_t state = 1;
    for (int i = 0; i < 2'000; ++i) {
        state = state * 6'364'136'223'846'793'005ULL + 1'442'695'040'888'963'407ULL;
        noise += char(state >> 56U);
    }
    sum = 0;
    EXPECT_LE(MakeRecord(RecordKind::Binary, noise, sum).size(), noise.size() + 13);
}

// ---------------------------------------------------------------- the base

TEST(JournalFormat, ABaseNeedsItsFactsItsBinaryPartAndALine)
{
    const Records base = BaseWith({{NoTag, u"one"_s, {}}});
    ASSERT_TRUE(ReadJournal(JournalOf(base)));
    EXPECT_EQ(*ReadJournal(JournalOf(base))->state.binary, "<binary/>");
    const Selection expected{{0, 1}, {0, 2}};
    EXPECT_EQ(ReadJournal(JournalOf(base))->state.selection, expected);
    for (const std::size_t missing : {0U, 2U, 3U, 4U}) {
        Records part = base;
        part.erase(part.begin() + std::ptrdiff_t(missing));
        EXPECT_FALSE(ReadJournal(JournalOf(part))) << missing;
    }
    Records batchFirst = base;
    batchFirst.insert(batchFirst.begin() + 3, {RecordKind::Batch, BatchPayload({})});
    EXPECT_FALSE(ReadJournal(JournalOf(batchFirst)));
    EXPECT_FALSE(ReadJournal("VMKK" + JournalOf(base).substr(4)));
}

TEST(JournalFormat, LinesThatNoDocumentHasAreRefused)
{
    const std::vector<Line> sound{
        {2, u"text"_s, {Mark::opening(0, 1), Mark::opening(0, 2), Mark::closing(4, 2), Mark::closing(4, 1)}},
        {NoTag, QString(), {}}};
    ASSERT_TRUE(ReadJournal(JournalOf(BaseWith(sound))));
    const std::vector<Line> unsound{
        {3, u"block"_s, {}},
        {NoTag, u"line\nbreak"_s, {}},
        {NoTag, u"line\rbreak"_s, {}},
        {NoTag, u"after"_s, {Mark::opening(0, 1), Mark::closing(6, 1)}},
        {NoTag, u"order"_s, {Mark::opening(3, 1), Mark::closing(1, 1)}},
        {NoTag, u"no tag"_s, {Mark::opening(0, NoTag), Mark::closing(1, NoTag)}},
        {NoTag, u"unknown"_s, {Mark::opening(0, 3), Mark::closing(1, 3)}},
        {NoTag, u"open"_s, {Mark::opening(0, 1)}},
        {NoTag, u"closed"_s, {Mark::closing(0, 1)}},
        {NoTag,
         u"crossed"_s,
         {Mark::opening(0, 1), Mark::opening(1, 2), Mark::closing(2, 1), Mark::closing(3, 2)}},
    };
    for (const Line& line : unsound) {
        EXPECT_FALSE(ReadJournal(JournalOf(BaseWith({line})))) << line.text.toStdString();
        BatchParts batch;
        batch.splices = {SpliceOf(SpliceForm::Lines, 0, 1, {line})};
        EXPECT_EQ(TextAfter(RecordKind::Batch, batch), QString()) << line.text.toStdString();
    }
}

// ---------------------------------------------------------------- batches

TEST(JournalFormat, ABatchReplacesLines)
{
    BatchParts batch;
    batch.splices = {SpliceOf(SpliceForm::Lines, 1, 1, {{NoTag, u"2"_s, {}}, {NoTag, u"3"_s, {}}})};
    EXPECT_EQ(TextAfter(RecordKind::Batch, batch), u"one|2|3"_s);
    batch.splices = {SpliceOf(SpliceForm::Lines, 0, 1, {})};
    EXPECT_EQ(TextAfter(RecordKind::Batch, batch), u"two"_s);
    // As a record of another kind it is none.
    EXPECT_EQ(TextAfter(RecordKind::Lines, batch), QString());
    EXPECT_EQ(TextAfter(RecordKind(40), batch), QString());
}

TEST(JournalFormat, ABatchThatLeavesNoLineIsRefused)
{
    BatchParts batch;
    batch.splices = {SpliceOf(SpliceForm::Lines, 0, 2, {})};
    EXPECT_EQ(TextAfter(RecordKind::Batch, batch), QString());
}

TEST(JournalFormat, ABatchBeyondTheLastLineIsRefused)
{
    BatchParts batch;
    batch.splices = {SpliceOf(SpliceForm::Lines, 1, 2, {{NoTag, u"x"_s, {}}})};
    EXPECT_EQ(TextAfter(RecordKind::Batch, batch), QString());
    batch.splices = {SpliceOf(SpliceForm::Lines, 3, 0, {{NoTag, u"x"_s, {}}})};
    EXPECT_EQ(TextAfter(RecordKind::Batch, batch), QString());
    // A change of the line after the last one.
    ByteWriter change;
    change.number(std::uint64_t(SpliceForm::Change));
    change.number(2);
    for (int i = 0; i < 8; ++i)
        change.number(0);
    batch.splices = {change.take()};
    EXPECT_EQ(TextAfter(RecordKind::Batch, batch), QString());
    ByteWriter unknown;
    unknown.number(2);
    unknown.number(0);
    batch.splices = {unknown.take()};
    EXPECT_EQ(TextAfter(RecordKind::Batch, batch), QString());
}

TEST(JournalFormat, ABatchWithDamagedTagsOrFactsIsRefused)
{
    BatchParts tags;
    tags.tags = EncodeTags({{u"B"_s, QString()}}).substr(0, 2);
    EXPECT_EQ(TextAfter(RecordKind::Batch, tags), QString());
    BatchParts facts;
    facts.flags = 2;
    ByteWriter writer;
    writer.string(std::string_view(EncodeFacts({})).substr(0, 20));
    facts.rest = writer.take();
    EXPECT_EQ(TextAfter(RecordKind::Batch, facts), QString());
    ByteWriter complete;
    complete.string(std::string_view(EncodeFacts({})));
    facts.rest = complete.take();
    EXPECT_EQ(TextAfter(RecordKind::Batch, facts), u"one|two"_s);
}

} // namespace
} // namespace vmk
