// The toolbar of the main window and the controls beside it.

#include "DisplayView.h"
#include "Form1.h"
#include "StartUpVariables.h"
#include "ToolbarPictures.h"
#include "frmTBCustomise.h"

#include <QComboBox>
#include <QLayout>
#include <QLineEdit>
#include <QToolBar>

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// Height of the band with small pictures.
constexpr int BandPixels = 27;
constexpr int SmallPicture = 16;
constexpr int LargePicture = 24;
/// Between the last button, `ValidateOptL` and `SchemaFileL`.
constexpr int Gap = 2;
/// Right of `SchemaFileL`.
constexpr int RightRoom = 12;
/// Minimum width of `SchemaFileL`.
constexpr int LeastField = 40;

ImageList Pictures(int pixels)
{
    ImageList list{{pixels, pixels}, {}};
    for (const ToolbarButton& row : ToolbarDesign())
        list.images.append(ToolbarPicture(QLatin1StringView(row.key)));
    return list;
}

} // namespace

void Form1::makeToolbar()
{
    TB = new QToolBar(client);
    TB->setObjectName(u"TB"_s);
    TB->setAccessibleName(u"toolbar"_s);
    TB->setIconSize({SmallPicture, SmallPicture});
    TB->setToolButtonStyle(Qt::ToolButtonIconOnly);
    TB->setMovable(false);
    TB->installEventFilter(this);
    for (const ToolbarButton& row : ToolbarDesign()) {
        const QString key = QLatin1StringView(row.key);
        QAction* button = TB->addAction(ToolbarPicture(key), key);
        button->setObjectName(key);
        button->setToolTip(QLatin1StringView(row.toolTip));
        button->setEnabled(ProcedureOf(row.command));
        connect(button, &QAction::triggered, this, [this, command = row.command] { RunCommand(command); });
        TB->widgetForAction(button)->setFocusPolicy(Qt::TabFocus);
    }
}

void Form1::buildToolbar()
{
    if (!Toolbar.Tbar()) {
        // Each picture has all three looks.
        Toolbar.TBImages = Toolbar.TBHotImages = Toolbar.TBDisImages = Pictures(SmallPicture);
        Toolbar.TBImagesL = Toolbar.TBHotImagesL = Toolbar.TBDisImagesL = Pictures(LargePicture);
        Toolbar.LVImages = Pictures(SmallPicture);
        Toolbar.setTbar(TB);
    }
    Toolbar.LoadTBFromReg();
}

void Form1::CustomiseToolbar()
{
    if (!customising) {
        const auto placeControls = [this] {
            // The display moves only if the height of the toolbar changes.
            if (HTMLread->y() == toolbarBand())
                MoveSchemaControls();
            else
                layOut();
        };
        customising = new frmTBCustomise(Toolbar, placeControls, this);
    }
    customising->show();
    customising->raise();
    customising->activateWindow();
}

/// The height that the controls need for a large desktop font; 0 if that of the buttons is enough.
int Form1::controlHeight() const
{
    constexpr int LargestUsual = 18;
    constexpr int Padding = 6;
    const int text = ValidateOptL->fontMetrics().height();
    return text <= LargestUsual ? 0 : text + Padding;
}

int Form1::toolbarBand() const
{
    // A large desktop font needs more than the pictures.
    return std::max(BandPixels + TB->iconSize().height() - SmallPicture, controlHeight() + 2);
}

void Form1::MoveSchemaControls()
{
    // Buttons for which there is no room are in the menu of the toolbar's extension button.
    const int listWidth = ValidateOptL->sizeHint().width();
    const int most = client->width() - listWidth - 2 * Gap - LeastField - RightRoom;
    const int needed = TB->sizeHint().width();
    TB->setGeometry(0, 0, needed > most ? std::max(most, 0) : client->width(), toolbarBand());
    // The buttons must be laid out first.
    TB->layout()->activate();

    const QList<QAction*> buttons = TB->actions();
    const QRect last
        = buttons.isEmpty() ? QRect(0, 0, 0, TB->height()) : TB->widgetForAction(buttons.last())->geometry();
    const QRect band = needed > most ? QRect(0, 0, TB->width(), TB->height()) : last;
    const int height = std::max(band.height(), controlHeight());
    const int top = height > band.height() ? (toolbarBand() - height) / 2 : band.y();
    ValidateOptL->setGeometry(band.x() + band.width() + Gap, top, listWidth, height);
    const int after = ValidateOptL->x() + ValidateOptL->width();
    SchemaFileL->setGeometry(after + Gap, top, qRound(FormWidth() / TwipsPerPixelX) - after - RightRoom,
                             height);
    SchemaFileL->update();
}

} // namespace vmk
