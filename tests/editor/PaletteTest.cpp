#include "SettingsVariables.h"
#include "WindowTest.h"

#include <QAbstractItemView>
#include <QHash>
#include <QHeaderView>
#include <QStyle>
#include <QStyleFactory>
#include <QToolButton>
#include <QTreeWidget>

#include <cmath>
#include <memory>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

/// The required contrast of text, according to the guidelines for accessible content; of pictures; and of
/// what is disabled but visible.
constexpr double TextContrast = 4.5;
constexpr double PictureContrast = 3.0;
constexpr double DisabledContrast = 1.4;

double Luminance(QRgb color)
{
    const auto linear = [](int part) {
        const double value = part / 255.0;
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) + 0.0722 * linear(qBlue(color));
}

double Contrast(QRgb one, QRgb other)
{
    const double a = Luminance(one);
    const double b = Luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// The highest contrast of a pixel to the most frequent colour of the area.
double ContrastIn(const QImage& image)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    }
    QRgb ground = 0;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it)
        ground = it.value() > counts.value(ground) ? it.key() : ground;
    double most = 1;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it)
        most = std::max(most, Contrast(it.key(), ground));
    return most;
}

QPalette LightPalette()
{
    const std::unique_ptr<QStyle> style(QStyleFactory::create(u"Fusion"_s));
    return style->standardPalette();
}

/// The palette of a dark desktop.
QPalette DarkPalette()
{
    QPalette palette(QColor(0x35, 0x35, 0x35), QColor(0x2B, 0x2B, 0x2B));
    palette.setColor(QPalette::Base, QColor(0x23, 0x23, 0x23));
    palette.setColor(QPalette::AlternateBase, QColor(0x31, 0x31, 0x31));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, QColor(0xEF, 0xEF, 0xEF));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x80, 0x80, 0x80));
    palette.setColor(QPalette::PlaceholderText, QColor(0xA0, 0xA0, 0xA0));
    palette.setColor(QPalette::Highlight, QColor(0x2A, 0x82, 0xDA));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

struct Desktop
{
    const char* name;
    QPalette (*palette)();
};

class Palettes : public WindowTest, public testing::WithParamInterface<Desktop>
{
protected:
    ~Palettes() override
    {
        form.reset();
        QApplication::setPalette(before);
    }

    void UseDesktop()
    {
        QApplication::setPalette(GetParam().palette());
        QCoreApplication::processEvents();
    }

    static QImage PictureOf(QWidget& widget)
    {
        widget.ensurePolished();
        return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
    }

    static void ExpectEntriesLegible(QMenu& menu)
    {
        menu.adjustSize();
        const QImage picture = PictureOf(menu);
        for (QAction* entry : menu.actions()) {
            if (!entry->isVisible() || entry->isSeparator())
                continue;
            EXPECT_GE(ContrastIn(picture.copy(menu.actionGeometry(entry))),
                      entry->isEnabled() ? TextContrast : DisabledContrast)
                << menu.objectName().toStdString() << ": " << entry->text().toStdString();
        }
    }

    static void ExpectTextLegible(QWidget& widget, const char* what)
    {
        EXPECT_GE(ContrastIn(PictureOf(widget)), TextContrast) << what;
    }

    const QPalette before = QApplication::palette();
};

TEST_P(Palettes, MenusAreLegible)
{
    UseDesktop();
    Open();
    const QImage bar = PictureOf(*form->menuBar());
    for (QAction* title : form->menuBar()->actions()) {
        EXPECT_GE(ContrastIn(bar.copy(form->menuBar()->actionGeometry(title))), TextContrast)
            << title->text().toStdString();
        ExpectEntriesLegible(*title->menu());
    }
    ExpectEntriesLegible(*form->MnRightClick);
}

TEST_P(Palettes, ToolbarPicturesAreLegible)
{
    UseDesktop();
    Open();
    for (QAction* button : form->TB->actions()) {
        QWidget* place = form->TB->widgetForAction(button);
        EXPECT_GE(ContrastIn(PictureOf(*form->TB).copy(place->geometry())),
                  button->isEnabled() ? PictureContrast : DisabledContrast)
            << button->text().toStdString();
    }
}

TEST_P(Palettes, FieldsAndListsAreLegible)
{
    UseDesktop();
    Open();
    ExpectTextLegible(*form->ValidateOptL, "ValidateOptL");
    ExpectTextLegible(*form->SchemaFileL, "SchemaFileL");
    form->ValidateOptL->showPopup();
    ExpectTextLegible(*form->ValidateOptL->view(), "the list of ValidateOptL");
    form->ValidateOptL->hidePopup();
    form->ValidateOptL->setCurrentIndex(1);
    ExpectTextLegible(*form->ValidateOptL, "ValidateOptL");
}

TEST_P(Palettes, AMissingSchemaIsReportedInLegibleRed)
{
    UseDesktop();
    Open();
    SchemaFile = workplace.Path(u"none.xsd"_s);
    form->RefreshSchemaField();
    EXPECT_EQ(form->SchemaFileL->palette().color(QPalette::Text), QColor(255, 0, 0));
    // Pure red has the highest possible contrast to any background.
    EXPECT_GE(ContrastIn(PictureOf(*form->SchemaFileL)), PictureContrast);
}

TEST_P(Palettes, BarsAreLegible)
{
    UseDesktop();
    Open();
    for (int panel = 1; panel <= 4; ++panel)
        form->Status->setPanelText(panel, u"text"_s);
    form->StatusMsg->setPanelText(1, u"message"_s);
    ExpectTextLegible(*form->StatusMsg, "StatusMsg");
    for (QLabel* panel : form->Status->findChildren<QLabel*>()) {
        if (!panel->text().isEmpty()) {
            EXPECT_GE(ContrastIn(PictureOf(*form->Status).copy(panel->geometry())), TextContrast)
                << panel->accessibleName().toStdString();
        }
    }
}

TEST_P(Palettes, DividersOfTheBarsAreSeen)
{
    UseDesktop();
    Open();
    form->Status->clear();
    form->StatusMsg->clear();
    EXPECT_GE(ContrastIn(PictureOf(*form->StatusMsg)), DisabledContrast);
    const QImage bar = PictureOf(*form->Status);
    for (int panel = 1; panel < 4; ++panel) {
        const QLabel* label = form->Status->findChildren<QLabel*>().at(panel);
        EXPECT_GE(ContrastIn(bar.copy(label->x() - 4, 6, 6, bar.height() - 12)), DisabledContrast) << panel;
    }
}

TEST_P(Palettes, TheDisplayKeepsItsOwnColours)
{
    UseDesktop();
    OpenBook();
    const QImage page = PictureOf(*View().viewport());
    EXPECT_EQ(page.pixelColor(page.width() / 2, page.height() - 2), QColor(0xF5, 0xF5, 0xF5));
    EXPECT_GE(ContrastIn(page), TextContrast);
}

TEST_P(Palettes, TheWelcomePageKeepsItsOwnColours)
{
    UseDesktop();
    FirstStart = true;
    form->Load();
    ASSERT_TRUE(WaitFor([this] { return View().location() == WelcomeFile && Document().lineCount() > 5; }));
    const QImage page = PictureOf(*View().viewport());
    EXPECT_GE(page.pixelColor(page.width() - 3, 3).lightness(), 200);
    EXPECT_GE(ContrastIn(page), TextContrast);
}

TEST_P(Palettes, TheListOfSchemasIsLegible)
{
    UseDesktop();
    Open();
    form->ShowSchemas();
    auto* const list = form->findChild<QTreeWidget*>(u"SchemasL"_s);
    ASSERT_TRUE(list);
    ASSERT_GT(list->topLevelItemCount(), 1);
    const QImage picture = PictureOf(*list->viewport());
    for (int row = 0; row < list->topLevelItemCount(); ++row) {
        const QRect place = list->visualItemRect(list->topLevelItem(row));
        EXPECT_GE(ContrastIn(picture.copy(place)), row == 0 ? PictureContrast : TextContrast) << row;
    }
    ExpectTextLegible(*list->header(), "the head of the list");
}

TEST_P(Palettes, AChangeOfTheDesktopReachesTheOpenWindow)
{
    QApplication::setPalette(LightPalette());
    Open();
    PictureOf(*form);
    UseDesktop();
    const QColor ground = GetParam().palette().color(QPalette::Window);
    EXPECT_EQ(PictureOf(*form->StatusMsg).pixelColor(form->StatusMsg->width() - 3, 5), ground);
    ExpectTextLegible(*form->StatusMsg, "StatusMsg");
    ExpectTextLegible(*form->ValidateOptL, "ValidateOptL");
    ExpectTextLegible(*form->SchemaFileL, "SchemaFileL");
    const QLineEdit& field = *form->SchemaFileL;
    EXPECT_EQ(field.palette().color(QPalette::Base), GetParam().palette().color(QPalette::Base));
    ExpectTextLegible(*form->TB, "TB");
}

INSTANTIATE_TEST_SUITE_P(Desktops, Palettes,
                         testing::Values(Desktop{"light", LightPalette}, Desktop{"dark", DarkPalette}),
                         [](const auto& desktop) { return desktop.param.name; });

} // namespace
} // namespace vmk
