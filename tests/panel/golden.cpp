// SPDX-License-Identifier: MIT
// Texts held against what they were when somebody looked at them.
#include "golden.h"

#include <QFile>

#include <gtest/gtest.h>

void expectGolden(const char *name, const QString &text)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    GTEST_SKIP() << "the places are those of Qt 5, whose layouts round in another way";
#endif
    QFile file(QStringLiteral(GOLDEN_FOLDER "/%1.txt").arg(QLatin1String(name)));
    if (qEnvironmentVariableIsSet("DX4_WRITE_GOLDEN")) {
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
        return;
    }
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    EXPECT_EQ(text.toStdString(), file.readAll().toStdString());
}
