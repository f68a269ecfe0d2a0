#include "DisplayPage.h"

#include <gtest/gtest.h>
