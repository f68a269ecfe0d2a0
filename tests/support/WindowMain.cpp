// The main program of tests that show windows: one application object for all of them.

#include "WidgetSeams.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    // A test opens and closes windows; the last one closed ends nothing.
    QApplication::setQuitOnLastWindowClosed(false);
    vmk::FillWidgetSeams();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
