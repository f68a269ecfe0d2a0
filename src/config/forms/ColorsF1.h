#pragma once

#include "ColorTable.h"

#include <QWidget>

class QPushButton;

namespace vmk {

class SettingsF;

/// The palette. The form draws the colour cells itself. A click on a cell, or Enter on the cell selected with
/// the arrow keys, sets a colour field of the settings dialog. The form remains open.
class ColorsF1 : public QWidget
{
    Q_OBJECT

public:
    explicit ColorsF1(SettingsF& owner);

    /// Reads the file of colours, creates it if it is missing, and draws the cells.
    void DrawColorCells();
    /// Selects the field to set.
    /// \param name  one of `ColorNames`
    void SetField(const QString& name);
    /// Returns the cell selected last; -1 for none.
    [[nodiscard]] int currentCell() const { return current; }

    /// Shows the name of the field. A click sets the field to the selected cell.
    QPushButton* SetColorForB = nullptr;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void chooseCell(int cell);
    void giveColor(int cell);
    void moveTo(int cell);

    SettingsF& settings;
    ColorTable table;
    int current = -1;
};

} // namespace vmk
