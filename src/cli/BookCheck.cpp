#include "BookCheck.h"

#include "CommandLine.h"
#include "FictionBookNamespace.h"
#include "FileNames.h"
#include "Files.h"
#include "XmlReason.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <new>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

FileContent ReadStandardInput()
{
    FileContent content;
    char piece[1 << 16];
    while (const size_t length = std::fread(piece, 1, sizeof piece, stdin)) {
        if (content.bytes.size() + length > MaxFileBytes) {
            content.outcome = ReadOutcome::TooLarge;
            return content;
        }
        content.bytes.append(piece, length);
    }
    if (std::ferror(stdin) != 0) {
        content.outcome = ReadOutcome::Unreadable;
        content.systemReason = u"standard input failed"_s;
    }
    return content;
}

} // namespace

FileContent ReadBookContent(const QString& book)
{
    return book == u"-" ? ReadStandardInput() : ReadContent(book);
}

namespace {

void ReadAndCheck(BookCheck& check, const BookValidation& validation)
{
    const FileContent content = ReadBookContent(check.book);
    if (content.outcome != ReadOutcome::Ok) {
        check.failure = ReadFailureText(content);
        return;
    }
    check.error = validation.validate(content.bytes, XmlEncoding::byDeclaration());
}

QString ShownReason(const XmlParseError& error)
{
    return WithoutNamespace(error.reason, FictionBookNamespace());
}

} // namespace

BookCheck CheckBook(const QString& book, const BookValidation& validation)
{
    BookCheck check;
    check.book = book;
    try {
        ReadAndCheck(check, validation);
    } catch (const std::bad_alloc&) {
        check.failure = u"not enough memory"_s;
    }
    return check;
}

QString ResultLine(const BookCheck& check, ValidateAgainst against)
{
    const QString name = ShownName(check.book);
    if (!check.failure.isEmpty())
        return name + u": "_s + check.failure;
    if (!check.error)
        return name + u": No errors (against "_s + NameOf(against) + u')';
    return name + u':' + QString::number(check.error.line) + u':' + QString::number(check.error.linepos)
        + u": Error against "_s + NameOf(against) + u". "_s + ShownReason(check.error);
}

QString ResultJson(const BookCheck& check, ValidateAgainst against)
{
    QJsonObject object{{u"book"_s, ReadableName(check.book)}};
    if (!check.failure.isEmpty()) {
        object[u"failure"_s] = check.failure;
    } else {
        object[u"against"_s] = NameOf(against);
        object[u"valid"_s] = !check.error;
    }
    if (check.error)
        object[u"error"_s]
            = QJsonObject{{u"line"_s, check.error.line},      {u"column"_s, check.error.linepos},
                          {u"byte"_s, check.error.fileByte},  {u"position"_s, check.error.filepos},
                          {u"code"_s, check.error.errorCode}, {u"reason"_s, ShownReason(check.error)}};
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace vmk
