// SPDX-License-Identifier: MIT
// The time around a fault as it is opened later, as files.
#include "past_pictures.h"

#include "past_fixture.h"

#include "panel/past/past_window.h"

#include <QAbstractButton>
#include <QCoreApplication>

using namespace dx4::panel;

void drawPast(QSize size, const char *look, const QDir &folder)
{
    for (const char *tab : { "drives", "frames", "parameters" }) {
        PastWindow window(pastFault());
        window.resize(size);
        window.show();
        window.findChild<QAbstractButton *>(QLatin1String(tab))->click();
        QCoreApplication::processEvents();
        const QString name = QStringLiteral("past_%1-%2-%3.png")
                                 .arg(QLatin1String(tab))
                                 .arg(size.width())
                                 .arg(QLatin1String(look));
        window.grab().save(folder.filePath(name));
    }
}
