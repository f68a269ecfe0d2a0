#pragma once

#include "ToolForm.h"

namespace vmk {

/// Shows name, version and licence of the program. A click, Enter or Escape closes it.
class VMKAboutF : public ToolForm
{
    Q_OBJECT

public:
    VMKAboutF();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace vmk
