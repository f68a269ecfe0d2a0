#pragma once

#include "DisplayView.h"

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

#include <vector>

namespace vmk {

/// A display in a separate window, with an editable page in a known font.
class ViewTest : public testing::Test
{
protected:
    static constexpr int Width = 500;
    static constexpr int Height = 400;
    /// Milliseconds; only a failure takes this long.
    static constexpr int Patience = 20'000;

    void show(const QByteArray& lines, QSize size = {Width, Height})
    {
        view.setPage(pageOf(lines));
        view.setDesignMode(QStringLiteral("On"));
        view.resize(size);
        view.show();
        view.focus();
        QApplication::setActiveWindow(&view);
        QApplication::processEvents();
    }

    [[nodiscard]] static QByteArray pageOf(const QByteArray& lines)
    {
        return "<HTML><HEAD><STYLE>span.t {color:#000080; font-weight:bold}</STYLE></HEAD>"
               "<BODY STYLE=\"font-family:DejaVu Sans; font-size:12pt; margin-top:2px; margin-left:5px; "
               "margin-right:5px\" text=\"#000000\" bgColor=\"#ffffff\">"
            + lines + "</BODY></HTML>";
    }

    void key(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&view, Qt::Key(key), modifiers);
    }
    void type(const char* text) { QTest::keyClicks(&view, QString::fromUtf8(text)); }

    void caretTo(int line, int offset) { document().setSelection({line, offset}, {line, offset}); }
    void select(Position from, Position to) { document().setSelection(from, to); }
    [[nodiscard]] Position caret() { return document().selection().focus; }
    [[nodiscard]] DisplayDocument& document() { return view.document(); }
    [[nodiscard]] QString line(int index) { return document().line(index).text; }
    [[nodiscard]] QString text() { return innerText(); }

    /// All lines, with "|" between them.
    [[nodiscard]] QString innerText()
    {
        QStringList lines;
        for (int i = 0; i < document().lineCount(); ++i)
            lines.append(document().line(i).text);
        return lines.join(u'|');
    }

    /// Every position of the document in order.
    [[nodiscard]] std::vector<Position> places()
    {
        std::vector<Position> all;
        for (int i = 0; i < document().lineCount(); ++i) {
            for (int offset = 0; offset <= line(i).size(); ++offset)
                all.push_back({i, offset});
        }
        return all;
    }

    /// Runs the event loop until every line is measured.
    void measureAll()
    {
        static_cast<void>(view.scrollTop());
        ASSERT_TRUE(QTest::qWaitFor([this] { return view.isMeasured(); }, Patience));
    }

    [[nodiscard]] QPoint pointOf(Position place)
    {
        const QRect rect = view.clientRects(place, place).front();
        return {rect.left(), rect.center().y()};
    }

    DisplayView view;
};

inline void PrintTo(const Position& place, std::ostream* out)
{
    *out << place.line << ':' << place.offset;
}

} // namespace vmk
