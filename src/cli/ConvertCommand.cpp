#include "CodePages.h"
#include "Command.h"
#include "CommandLine.h"
#include "Encodings.h"
#include "PageOfBook.h"
#include "SaveBook.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

struct ConvertOptions
{
    QString book;
    QString file;
    QString encoding = u"original"_s;
    QString style = u"tags tree"_s;
    QString inputEncoding = u"original"_s;
};

/// The value of the current option, which must be in the list.
QString ListedValue(CommandLine& line, const QStringList& list)
{
    const QString option = line.option();
    QString value = line.value();
    if (!list.contains(value))
        line.fail(option + u" needs one of: \""_s + list.join(u"\", \""_s) + u'"');
    return value;
}

void TakeOption(CommandLine& line, ConvertOptions& options)
{
    const QString& option = line.option();
    if (option == u"--out")
        options.file = line.value();
    else if (option == u"--encoding")
        options.encoding = ListedValue(line, OutputEncodings);
    else if (option == u"--style")
        options.style = ListedValue(line, OutputStyles);
    else if (option == u"--input-encoding")
        options.inputEncoding = ListedValue(line, OutputEncodings + QStringList{u"unicode"_s});
    else
        line.failUnknownOption();
}

ConvertOptions ReadOptions(CommandLine& line)
{
    ConvertOptions options;
    while (line.next()) {
        if (!line.option().isEmpty())
            TakeOption(line, options);
        else if (options.book.isEmpty())
            options.book = line.operand();
        else
            line.fail(u"more than one book given"_s);
    }
    if (options.book.isEmpty())
        line.fail(u"no book given"_s);
    if (options.file.isEmpty())
        line.fail(u"no file given to write to (--out)"_s);
    return options;
}

/// Whether reading the book in its encoding would lose text: UTF-16 is kept completely only if it is ASCII,
/// and the code pages have no character 0.
bool WouldLoseText(std::string_view bytes, const QString& inputEncoding)
{
    const int32_t codePage = FindBookEncoding(bytes, inputEncoding.toStdString()).work.codePage;
    if (codePage != CodePageUtf16)
        return codePage != CodePageUtf8 && bytes.find('\0') != std::string_view::npos;
    constexpr char16_t ByteOrderMark = 0xfeff;
    constexpr char16_t LastAscii = 0x7f;
    const QString text = DecodeBytes(bytes, CodePageUtf16);
    const QStringView rest = QStringView(text).mid(text.startsWith(ByteOrderMark) ? 1 : 0);
    return bytes.size() % 2 != 0
        || std::ranges::any_of(rest, [](QChar c) { return c.isNull() || c.unicode() > LastAscii; });
}

/// The reason why the book is not converted; empty if it is.
QString Refusal(std::string_view bytes, const QString& inputEncoding)
{
    if (IsBlank(bytes))
        return u"empty book - nothing to save"_s;
    return WouldLoseText(bytes, inputEncoding)
        ? u"not converted: text would be lost in reading its encoding"_s
        : QString();
}

int RunConvert(const QStringList& arguments)
{
    CommandLine line(arguments);
    const ConvertOptions options = ReadOptions(line);
    if (!line.error().isEmpty()) {
        PrintErrorLine(u"vmk convert: "_s + line.error() + u"; try vmk convert --help"_s);
        return ExitFailure;
    }

    ReadSettings(true);
    InLineTags = DefaultInLineTags();
    InputEncoding = options.inputEncoding;
    OutputEncoding = options.encoding;
    OutputStyle = options.style;
    std::optional<std::string> book = ReadBook(options.book);
    if (!book)
        return ExitFailure;
    if (const QString refusal = Refusal(*book, options.inputEncoding); !refusal.isEmpty()) {
        PrintErrorLine(u"vmk: "_s + ShownName(options.book) + u": "_s + refusal);
        return ExitFailure;
    }
    std::optional<std::string> page = PageOfBook(options.book, *std::move(book));
    if (!page)
        return ExitFailure;
    const BookFile file = FileOfPage(PageAsDisplayed(*std::move(page)), SaveLayoutOfSettings());
    return WriteOutput(options.file, file.bytes, Durability::Flushed) ? ExitClean : ExitFailure;
}

} // namespace

const Command ConvertCommand
    = {"convert", "load a book and save it in another encoding or layout",
       R"(usage: vmk convert BOOK --out FILE [--encoding NAME] [--style STYLE] [--input-encoding NAME]

Loads BOOK and saves it as the editor does without an edit: adds the program to its description, removes line
ends in the text, and shortens runs of blanks to one.

  --out FILE             the file to write, replaced completely or not at all; may be BOOK
  --encoding NAME        original (default), windows-1251, windows-1252, windows-1250 or utf-8
  --style STYLE          compact (one line), "line ends" (one element per line) or "tags tree"
                         (indented; default)
  --input-encoding NAME  read BOOK in this encoding (one of the above, or unicode) instead of the declared one
  --help                 show this text

A book that is not well-formed is saved without indentation and reported on standard error. An empty book, and
a book that cannot be read without loss (UTF-16 with other than ASCII characters), is refused.

Exit status: 0 the file was written, 2 wrong usage, or a file that cannot be read or written.
)",
       RunConvert};

} // namespace vmk
