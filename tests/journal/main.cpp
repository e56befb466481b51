// SPDX-License-Identifier: MIT
// Tests with an event loop for the signals, and the child that one of them kills.
#include "kill_test.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QStringLiteral("--write-until-killed"))
        return writeUntilKilled(arguments.value(2));
    return RUN_ALL_TESTS();
}
