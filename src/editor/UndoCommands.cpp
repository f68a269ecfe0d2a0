#include "UndoCommands.h"

#include "BookVariables.h"
#include "MainDisplay.h"
#include "SettingsVariables.h"

#include <algorithm>

namespace vmk {

void UndoEdit()
{
    MainDisplay().undo(std::max(UndoSteps, 1));
}

void RedoEdit()
{
    MainDisplay().redo(std::max(UndoSteps, 1));
}

} // namespace vmk
