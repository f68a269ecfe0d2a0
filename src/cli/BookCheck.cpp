#include "BookCheck.h"

#include "CommandLine.h"
#include "FictionBookNamespace.h"
#include "FileNames.h"
#include "XmlReason.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

QJsonObject JsonOfError(const XmlParseError& error)
{
    return {{u"line"_s, error.line},        {u"column"_s, error.linepos}, {u"byte"_s, error.fileByte},
            {u"position"_s, error.filepos}, {u"code"_s, error.errorCode}, {u"reason"_s, ShownReason(error)}};
}

} // namespace

BookCheck CheckBook(const BookItem& book, const BookValidation& validation, ErrorsToFind errors)
{
    BookCheck check;
    check.book = book.name;
    const FileContent content = book.content();
    if (content.outcome != ReadOutcome::Ok) {
        check.failure = ReadFailureText(content);
    } else if (errors == ErrorsToFind::All) {
        check.errors = validation.validateAll(content.bytes, XmlEncoding::byDeclaration());
    } else {
        XmlParseError first = validation.validate(content.bytes, XmlEncoding::byDeclaration());
        if (first)
            check.errors.push_back(std::move(first));
    }
    return check;
}

QString ShownReason(const XmlParseError& error)
{
    return WithoutNamespace(error.reason, FictionBookNamespace());
}

QStringList ResultLines(const BookCheck& check, ValidateAgainst against)
{
    const QString name = ShownName(check.book);
    if (check.errors.empty())
        return {name + u": No errors (against "_s + NameOf(against) + u')'};
    QStringList lines;
    for (const XmlParseError& error : check.errors)
        lines += name + u':' + QString::number(error.line) + u':' + QString::number(error.linepos)
            + u": Error against "_s + NameOf(against) + u". "_s + ShownReason(error);
    return lines;
}

QString ResultJson(const BookCheck& check, ValidateAgainst against, ErrorsToFind errors)
{
    QJsonObject object{{u"book"_s, ReadableName(check.book)},
                       {u"against"_s, NameOf(against)},
                       {u"valid"_s, check.errors.empty()}};
    if (!check.errors.empty())
        object[u"error"_s] = JsonOfError(check.errors.front());
    if (errors == ErrorsToFind::All) {
        QJsonArray all;
        for (const XmlParseError& error : check.errors)
            all.append(JsonOfError(error));
        object[u"errors"_s] = all;
    }
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace vmk
