#pragma once

#include "DisplayLines.h"
#include "FileState.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The journal of a session: the base, which is the complete state of an edited book, and the batches of
/// edits after it.
///
///     file    = "VMKJ" version:u32 record*
///     record  = length:u32 kind:u8 payload checksum:u64
///
/// Numbers in records are little-endian. The checksum covers kind and payload, with the checksum of the
/// record before as its seed, so that no record is valid in another place. The base consists of the records
/// `Facts`, `Tags`, `Binary`, `Lines` (several) and `BaseEnd`, in this order. Each `Batch` takes the book
/// from one state that the user has seen to the next. A reader uses the records up to the first one that is
/// damaged.
namespace vmk {

inline constexpr std::string_view JournalSignature("VMKJ\x01\0\0\0", 8);

enum class RecordKind : std::uint8_t
{
    Facts = 1,
    Tags = 2,
    Binary = 3,
    Lines = 4,
    BaseEnd = 5,
    Batch = 6,
    Packed = 0x80 ///< a flag: the payload is compressed
};

/// The state of the open book besides its page and its binary part; see `BookVariables.h`.
struct BookFacts
{
    QString path;
    FileState onDisk; ///< of the file when it was last loaded or saved
    std::uint64_t checksum = 0; ///< of its content then
    QByteArray pageFront; ///< the page up to its first line
    std::int32_t binaryCodePage = 0;
    std::int32_t workCodePage = 0;
    std::int32_t fileCodePage = 0;
    bool keepsText = false;
    bool hasCharRefs = false;
    std::string workEncodingName;
    std::string workMetaTag;
    std::string fileEncodingName;
    std::string fileMetaTag;
    std::string xmlDeclaration;
};

/// A start tag: the numbers of the tags in a journal are their positions, from 1.
struct JournalTag
{
    QString name;
    QString attributes;
};

/// The complete state of an edited book.
struct JournalBase
{
    BookFacts facts;
    std::vector<JournalTag> tags;
    std::shared_ptr<const std::string> binary; ///< never null
    std::vector<LinePtr> lines;
    Selection selection;
    bool unsaved = true; ///< Some of the text is not in the book's file.
};

/// Lines replaced by others.
struct LineSplice
{
    int first = 0;
    int removed = 0;
    std::vector<LinePtr> inserted;
};

/// The edits between two states that the user sees.
struct JournalBatch
{
    std::vector<JournalTag> newTags;
    std::vector<LineSplice> splices;
    std::shared_ptr<const std::string> binary; ///< null if unchanged
    std::optional<BookFacts> facts; ///< nothing if unchanged
    Selection selection;
    bool unsaved = true;
};

/// Appends values to a text.
class ByteWriter
{
public:
    [[nodiscard]] const std::string& bytes() const { return text; }
    [[nodiscard]] std::string take() { return std::move(text); }

    void number(std::uint64_t value); ///< variable length
    void fixed(std::uint64_t value, int byteCount);
    void string(std::string_view value);
    void string(QStringView value);
    void line(const Line& line);
    void marks(std::span<const Mark> marks);

private:
    std::string text;
};

/// Takes values from a text. After the first value that is not there, `isGood` is false and all values are
/// empty.
class ByteReader
{
public:
    explicit ByteReader(std::string_view bytes)
        : rest(bytes)
    {
    }

    [[nodiscard]] bool isGood() const { return good; }
    [[nodiscard]] bool atEnd() const { return rest.empty(); }
    void fail() { good = false; }

    [[nodiscard]] std::uint64_t number();
    /// A number of at most `most`; a larger one is a failure.
    [[nodiscard]] int count(std::size_t most);
    [[nodiscard]] std::uint64_t fixed(int byteCount);
    [[nodiscard]] std::string_view bytes();
    [[nodiscard]] QString string();
    [[nodiscard]] Line line();
    [[nodiscard]] std::vector<Mark> marks();
    [[nodiscard]] std::size_t left() const { return rest.size(); }

private:
    std::string_view rest;
    bool good = true;
};

/// Returns a record; compresses its payload if that makes a long one shorter.
/// \param checksum  in: that of the record before (0 for the first); out: that of this record
[[nodiscard]] std::string MakeRecord(RecordKind kind, std::string payload, std::uint64_t& checksum);

[[nodiscard]] std::string EncodeFacts(const BookFacts& facts);
[[nodiscard]] BookFacts DecodeFacts(ByteReader& reader);
[[nodiscard]] std::string EncodeTags(const std::vector<JournalTag>& tags);
[[nodiscard]] std::vector<JournalTag> DecodeTags(ByteReader& reader);
void EncodeSelection(ByteWriter& writer, const Selection& selection);
[[nodiscard]] Selection DecodeSelection(ByteReader& reader);

/// How a splice is written in a batch.
enum class SpliceForm : std::uint8_t
{
    Lines, ///< the complete new lines
    Change ///< one line: what differs from the old one
};

} // namespace vmk
