#pragma once

#include <QtGlobal>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vmk {

/// The encoding of the bytes of an XML text.
class XmlEncoding
{
public:
    enum class Kind
    {
        ByDeclaration,
        Utf8,
        CodePage
    };

    /// The byte order mark or the XML declaration decides; UTF-8 if both are missing. For files.
    [[nodiscard]] static XmlEncoding byDeclaration() { return {Kind::ByDeclaration, 0}; }
    /// UTF-8, whatever the declaration says.
    [[nodiscard]] static XmlEncoding utf8() { return {Kind::Utf8, 65001}; }
    /// One byte per character in the Windows code page `number` (1250, 1251 or 1252), whatever the
    /// declaration says. Bytes without a character are the C1 control with the same number.
    [[nodiscard]] static XmlEncoding codePage(int number) { return {Kind::CodePage, number}; }

    [[nodiscard]] Kind kind() const { return kind_; }
    [[nodiscard]] int number() const { return number_; }

private:
    XmlEncoding(Kind kind, int number)
        : kind_(kind)
        , number_(number)
    {
    }

    Kind kind_;
    int number_;
};

/// A position in an XML text in four units. A line ends with CR LF, LF or CR.
struct XmlPosition
{
    qsizetype fileByte = 0; ///< bytes of the given text before the position
    qsizetype filepos = 0; ///< UTF-16 units before it; each line end counts with its actual length
    int line = 1; ///< from 1
    int linepos = 1; ///< characters (code points), from 1, without a byte order mark
};

/// A completely decoded text.
struct XmlDecodedText
{
    std::string encoding; ///< in lower case; empty if it is unknown
    std::string text; ///< UTF-8 without a byte order mark, up to the first invalid byte
    bool complete = false; ///< all bytes are valid
};

/// Decodes a text by the rules of XML: its byte order mark, its first bytes or its declaration decide.
[[nodiscard]] XmlDecodedText DecodeXmlText(std::string_view bytes);

/// The bytes of an XML text as a stream of UTF-8 that maps its positions back to the bytes.
///
/// The bytes are not copied and must outlive the object.
class XmlInput
{
public:
    class Decoder;
    /// Why the bytes cannot be read further, and at which position of the stream.
    struct Failure
    {
        int errorCode;
        qsizetype offset; ///< bytes of UTF-8
        std::string reason;
    };

    /// \param source  the bytes; must outlive the object
    XmlInput(std::string_view source, XmlEncoding encoding);
    XmlInput(const XmlInput&) = delete;
    XmlInput& operator=(const XmlInput&) = delete;
    ~XmlInput();

    /// Writes up to `capacity` bytes of UTF-8 to `out`. Returns their number; 0 at the end of the text, at
    /// bytes that are invalid in the encoding (see `failure`), and after `stop`.
    [[nodiscard]] qsizetype read(char* out, qsizetype capacity);
    /// Ends the stream: `read` then returns 0.
    void stop() { stopped = true; }

    /// Set if the encoding is unknown, or after `read` has met bytes that are invalid in it.
    [[nodiscard]] const std::optional<Failure>& failure() const { return failed; }

    /// Returns the encoding in use, as declared or by its common name.
    [[nodiscard]] std::string encodingName() const;

    /// Returns the first `length` bytes of the stream, stored in `room` if they have to be decoded again. In
    /// that case, a character cut by the limit is omitted.
    [[nodiscard]] std::string_view prefix(qsizetype length, std::string& room) const;
    /// Returns the position in the given text of byte `offset` of the stream.
    [[nodiscard]] XmlPosition locate(qsizetype offset) const;
    /// Returns the positions of several offsets, which ascend, in one pass over the text.
    [[nodiscard]] std::vector<XmlPosition> locate(std::span<const qsizetype> offsets) const;

private:
    void choose(XmlEncoding encoding);
    void chooseByDeclaration();
    [[nodiscard]] qsizetype readUtf8(char* out, size_t room);
    [[nodiscard]] bool refill();

    std::string_view bytes; // without the byte order mark
    qsizetype markBytes = 0; // length of the byte order mark
    std::unique_ptr<Decoder> decoder; // null: the bytes are UTF-8
    qsizetype consumed = 0; // of `bytes`
    qsizetype produced
        = 0; // of the stream, `pending` included; without a decoder, tested and not yet read too
    std::string pending; // decoded, from `pendingStart` on not read yet
    size_t pendingStart = 0;
    bool stopped = false;
    bool stopAtNul = false; // a character 0 follows `pending`
    std::optional<Failure> failed;
};

} // namespace vmk
