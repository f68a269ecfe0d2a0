#pragma once

#include <QtGlobal>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vmk {

/// How the bytes of an XML text are to be read.
class XmlEncoding
{
public:
    enum class Kind
    {
        ByDeclaration,
        Utf8,
        CodePage
    };

    /// The byte order mark or the XML declaration decides, UTF-8 without either: a file as it stands.
    [[nodiscard]] static XmlEncoding byDeclaration() { return {Kind::ByDeclaration, 0}; }
    /// UTF-8, whatever the declaration says.
    [[nodiscard]] static XmlEncoding utf8() { return {Kind::Utf8, 65001}; }
    /// One byte a character in the Windows code page `number` (1250, 1251 or 1252), whatever the
    /// declaration says. Bytes without a character stand for the C1 control of the same number.
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

/// A place in an XML text, told in four ways. A line ends with CR LF, LF or CR.
struct XmlPosition
{
    qsizetype fileByte = 0; ///< bytes of the given text before the place
    qsizetype filepos = 0; ///< UTF-16 units before it, each line end counted as it stands
    int line = 1; ///< from 1
    int linepos = 1; ///< characters (code points), from 1; a byte order mark is not counted
};

/// The bytes of an XML text as a stream of UTF-8, which remembers where its bytes came from.
///
/// The bytes are not copied and must outlive the object.
class XmlInput
{
public:
    class Decoder;
    /// Why the bytes can't be read on, at which place of the stream.
    struct Failure
    {
        int errorCode;
        qsizetype offset; ///< bytes of UTF-8
        std::string reason;
    };

    XmlInput(std::string_view source, XmlEncoding encoding);
    XmlInput(const XmlInput&) = delete;
    XmlInput& operator=(const XmlInput&) = delete;
    ~XmlInput();

    /// Puts up to `capacity` bytes of UTF-8 at `out`. Returns their number, 0 at the end of the text, at
    /// bytes that are no character of the encoding (see `failure`), and after `stop`.
    [[nodiscard]] qsizetype read(char* out, qsizetype capacity);
    /// Ends the stream: nothing more is read.
    void stop() { stopped = true; }

    /// Set when the encoding is not known, or once `read` has met bytes that are no character of it.
    [[nodiscard]] const std::optional<Failure>& failure() const { return failed; }

    /// The first `length` bytes of the stream; a character cut by the limit is left out of text that has to
    /// be decoded anew, which `room` then holds.
    [[nodiscard]] std::string_view prefix(qsizetype length, std::string& room) const;
    /// The place of the stream's byte `offset` in the text that was given.
    [[nodiscard]] XmlPosition locate(qsizetype offset) const;

private:
    void choose(XmlEncoding encoding);
    void chooseByDeclaration();
    [[nodiscard]] qsizetype readUtf8(char* out, size_t room);
    [[nodiscard]] bool refill();

    std::string_view bytes; // without the byte order mark
    qsizetype markBytes = 0; // length of the byte order mark
    std::unique_ptr<Decoder> decoder; // none: the bytes are UTF-8
    qsizetype consumed = 0; // of `bytes`
    qsizetype produced
        = 0; // of the stream, `pending` included; without a decoder, tested and not yet read too
    std::string pending; // decoded, from `pendingStart` on not yet handed out
    size_t pendingStart = 0;
    bool stopped = false;
    std::optional<Failure> failed;
};

} // namespace vmk
