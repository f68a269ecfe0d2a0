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

#include <memory>
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

} // namespace vmk
