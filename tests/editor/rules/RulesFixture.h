#pragma once

#include "DisplayPage.h"
#include "GridLayout.h"

#include "BookVariables.h"
#include "CommandsBySettings.h"
#include "SettingsVariables.h"
#include "TextRange.h"

#include <gtest/gtest.h>

#include <QString>

namespace vmk {

/// A small page for the editing rules, with the default settings.
class Rules : public ::testing::Test
{
protected:
    Rules()
    {
        NodeShift = 5;
        ShowNbsp = 1;
        TagHighlighting = 1;
        TagFontWeight = QStringLiteral("bold");
        DisplayFontWeight = QStringLiteral("normal");
    }

    /// Shows these lines, which have the form of a page's body.
    void show(const char* lines)
    {
        document.loadPage(QByteArray("<HTML><BODY>\r\n") + lines + "</BODY></HTML>");
        UndoSteps = 0;
        BookUnchanged = true;
    }
    void caret(int line, int offset) { document.setSelection({line, offset}, {line, offset}); }
    void select(int line, int offset, int toLine, int toOffset)
    {
        document.setSelection({line, offset}, {toLine, toOffset});
    }
    /// The page's lines in canonical HTML, LF between them.
    [[nodiscard]] std::string lines()
    {
        QString html;
        for (int node = 1; node <= document.lineCount(); ++node)
            html += (node > 1 ? QStringLiteral("\n") : QString()) + page::item(document, node).outerHTML();
        return html.toStdString();
    }
    [[nodiscard]] std::string text(int line) const { return document.line(line).text.toStdString(); }
    [[nodiscard]] std::string selected() { return page::createRange(document).text().toStdString(); }
    [[nodiscard]] Position caretPlace() const { return document.selection().focus; }
    /// Does what one undo command does.
    void undo()
    {
        for (int step = 0; step < std::max(UndoSteps, 1); ++step)
            document.undo();
    }
    void redo()
    {
        for (int step = 0; step < std::max(UndoSteps, 1); ++step)
            document.redo();
    }

    DisplayDocument document;
    GridLayout layout{document};
};

} // namespace vmk
