// The main program of tests that show windows: one application object for all of them.

#include "WidgetSeams.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char* argv[])
{
    testing::InitGoogleTest(&argc, argv);
    // The tests can be listed without a display.
    if (GTEST_FLAG_GET(list_tests))
        return RUN_ALL_TESTS();
    const QApplication application(argc, argv);
    // A test opens and closes windows; closing the last one does not end the program.
    QApplication::setQuitOnLastWindowClosed(false);
    vmk::FillWidgetSeams();
    return RUN_ALL_TESTS();
}
