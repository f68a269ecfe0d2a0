#pragma once

#include "PreviewF.h"
#include "PreviewPage.h"
#include "SettingsF.h"
#include "SettingsVariables.h"
#include "WindowTest.h"

#include <QCheckBox>
#include <QPushButton>

namespace vmk {

using namespace Qt::StringLiterals;

/// A book in windows-1251 with Russian text, every kind of mark-up that has a colour, and a picture.
inline constexpr char CyrillicBook[]
    = "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\r\n"
      "<FictionBook xmlns=\"http://www.gribuser.ru/xml/fictionbook/2.0\""
      " xmlns:l=\"http://www.w3.org/1999/xlink\">"
      "<description><title-info><genre>prose_classic</genre><author><nickname>N</nickname></author>"
      "<book-title>\xca\xed\xe8\xe3\xe0</book-title><lang>ru</lang></title-info><document-info><author>"
      "<nickname>N</nickname></author><program-used>Vellumark</program-used><date>2026</date><id>1</id>"
      "<version>1.0</version></document-info></description>"
      "<body><section id=\"s1\"><p>First \xf1\xeb\xee\xe2\xe0 &amp;\xa0more.</p>"
      "<p>Second <strong>line</strong> here.</p></section></body>"
      "<binary id=\"a.png\" content-type=\"image/png\">AAAA</binary></FictionBook>";

/// The settings dialog in the main window.
class SettingsFTest : public WindowTest
{
protected:
    ~SettingsFTest() override { SettingsF::Unload(); }

    SettingsF& Dialog()
    {
        if (!SettingsF::Existing()) {
            form->Entry("uSettings")->trigger();
            EXPECT_TRUE(QTest::qWaitForWindowActive(SettingsF::Existing()));
            EXPECT_TRUE(WaitFor([] { return SettingsF::Existing()->SettingsLoading == 0; }));
        }
        return *SettingsF::Existing();
    }
    static void Push(QPushButton* button)
    {
        ASSERT_TRUE(button->isEnabled());
        QTest::mouseClick(button, Qt::LeftButton);
    }
    /// Replaces the text of a field by typing.
    static void TypeInto(QLineEdit* field, const QString& text)
    {
        field->setFocus();
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Delete);
        for (const QChar& c : text)
            QTest::keyClick(field, c.toLatin1());
    }
    static void Choose(QComboBox* list, const QString& entry)
    {
        ASSERT_GE(list->findText(entry), 0) << entry.toStdString();
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Home);
        while (list->currentText() != entry)
            QTest::keyClick(list, Qt::Key_Down);
    }
    static void Set(QCheckBox* check, bool on)
    {
        if (check->isChecked() != on)
            QTest::keyClick(check, Qt::Key_Space);
    }
    /// "reload", until the book is complete again.
    void Reload()
    {
        form->StatusMsg->setPanelText(1, QString());
        Push(Dialog().ReloadB);
        ASSERT_TRUE(WaitFor([this] { return Message().startsWith("document complete"_L1); }));
    }
    /// Returns the page of the display.
    QString Page() { return QString::fromUtf8(Document().savePage()); }
    QString Head() { return Document().head(); }
    static PreviewF* Preview() { return PreviewF::Existing(); }
    static bool PreviewIsVisible() { return Preview() && Preview()->isVisible(); }
    static QString PreviewPage() { return QString::fromUtf8(Preview()->FbPreview->document().savePage()); }
    bool PreviewShows(const QString& text)
    {
        return WaitFor([&] { return PreviewIsVisible() && PreviewPage().contains(text); });
    }
};

} // namespace vmk
