#pragma once

// All shared variables and constants at once. New code includes the one header that it needs.
#include "BookVariables.h"
#include "FileSignatures.h"
#include "LineEnds.h"
#include "NonBreakingSpace.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
