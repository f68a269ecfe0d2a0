#pragma once

#include "BookVariables.h"
#include "DisplayDocument.h"
#include "FileSizeLimit.h"
#include "Files.h"
#include "JournalReader.h"
#include "RecoveryFolder.h"
#include "SessionRecorder.h"
#include "Workplace.h"

#include <QDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>

namespace vmk {

inline constexpr char SmallPage[]
    = "<HTML><meta content=\"text/html; charset=utf-8\" http-equiv=\"Content-Type\">"
      "<BODY STYLE=\"font-family:Verdana\" text=\"#000000\">\r\n"
      "<DIV id=FirstDiv><SPAN class=t>&lt;?xml version=\"1.0\"?&gt;</SPAN></DIV>\r"
      "<DIV><SPAN class=t>&lt;body&gt;</SPAN></DIV>\r"
      "<DIV style=\"MARGIN-LEFT: 5px\"><SPAN "
      "class=t>&lt;p&gt;</SPAN>\xd0\x9f\xd0\xb5\xd1\x80\xd0\xb2\xd0\xb0\xd1\x8f "
      "line<SPAN class=t>&lt;/p&gt;</SPAN></DIV>\r"
      "<DIV><SPAN class=t>&lt;/body&gt;</SPAN></DIV></BODY></HTML>";

/// A document whose edits are recorded in a separate folder.
class Session
{
public:
    explicit Session(const Workplace& place, const QByteArray& page = SmallPage)
        : folder(place.Path(QStringLiteral("Recovery")))
    {
        CurrentBook = place.Path(QStringLiteral("book.fb2"));
        BinaryPart = "<binary id=\"a.png\">QUJD</binary>";
        BinaryCodePage = 1251;
        recorder = std::make_unique<SessionRecorder>(
            document, folder, [this](const QString& problem) { problems.append(problem); });
        document.loadPage(page);
    }

    /// Types at a position; the edit is on the disk afterwards.
    void type(Position place, const QString& text)
    {
        document.setSelection(place, place);
        document.typeText(text);
        recorder->waitUntilWritten();
    }
    [[nodiscard]] QStringList journals() const
    {
        return QDir(folder).entryList({QStringLiteral("*.journal")}, QDir::Files);
    }
    [[nodiscard]] std::string journalBytes() const
    {
        const QStringList names = journals();
        return names.size() == 1 ? ReadContent(folder + u'/' + names.front()).bytes : std::string();
    }
    /// Ends the recorder as a crash of the process does: the journal stays.
    void crash() { recorder.reset(); }

    QString folder;
    DisplayDocument document;
    QStringList problems;
    std::unique_ptr<SessionRecorder> recorder;
};

/// The page of a recorded session; empty if nothing could be read.
inline QByteArray RecoveredPage(std::string_view journal)
{
    const std::optional<RecordedSession> session = ReadJournal(journal);
    if (!session)
        return {};
    DisplayDocument document;
    ShowSession(session->state, document);
    return document.savePage();
}

/// One random edit by the operations that commands use.
inline void EditAtRandom(DisplayDocument& document, std::mt19937& random)
{
    using namespace Qt::StringLiterals;
    const auto below = [&random](int count) { return int(random() % unsigned(std::max(count, 1))); };
    const auto anywhere = [&] {
        const int line = below(document.lineCount());
        return document.valid({line, below(int(document.line(line).text.size()) + 1)});
    };
    const Position a = anywhere();
    const Position b = anywhere();
    const Position from = std::min(a, b);
    const Position to = std::max(a, b);
    switch (below(12)) {
    case 0:
        document.setSelection(from, from);
        document.insertLineBreak();
        break;
    case 1:
        document.replaceText(from, from, u"два\r\nстрока 🙂"_s);
        break;
    case 2:
        document.deleteRange(from, std::min(to, document.valid({from.line + 1, 3})));
        break;
    case 3:
        document.replaceHtml(from, from, u"<B>bold</B> and <SPAN class=t>&lt;p&gt;</SPAN>");
        break;
    case 4:
        document.insertLines(from.line, u"<DIV style=\"MARGIN-LEFT: 10px\">new line</DIV><DIV>next</DIV>");
        break;
    case 5:
        document.undo(1 + below(3));
        break;
    case 6:
        document.redo(1 + below(2));
        break;
    case 7:
        document.wrapRange(from, document.valid({from.line, from.offset + 4}),
                           document.tags().intern(u"FONT", QString(u"color=#0000%1"_s.arg(below(99)))));
        break;
    case 8:
        if (document.line(from.line).text.size() > 3)
            document.replaceInLines({{from.line, 1, 2, u"run"_s, NoTag, 0}});
        break;
    case 9:
        document.setSelection(from, to);
        break;
    default:
        document.setSelection(from, from);
        document.typeText(QString(QChar(u'a' + below(26))));
        break;
    }
}

} // namespace vmk
