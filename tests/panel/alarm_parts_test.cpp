// SPDX-License-Identifier: MIT
// Alarms and journal as the program puts them together.
#include "panel/alarms/alarm_banner.h"
#include "panel/alarms/row_list.h"
#include "panel/app/alarm_parts.h"
#include "panel_fixture.h"
#include "service_fixture.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>

#include <gtest/gtest.h>

using namespace dx4;
using namespace dx4::panel;

namespace {

/// A window over a service with one station.
struct Parts {
    explicit Parts(const Options &options)
        : under(polling({ { 1, QStringLiteral("FU") } }))
    {
        under.playTime();
        under.start();
        plant.running.config.stations.append(host::StationConfig());
        plant.service = std::move(under.service);
        parts = std::make_unique<AlarmParts>(plant, options, systemClock());
        parts->addTo(window.window);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
    }

    ~Parts() { under.plant->release(); }

    std::string banner()
    {
        window.window.refresh();
        const auto *button = window.window.findChild<BannerButton *>();
        return button->isVisible() ? button->text().toStdString() : "";
    }

    ServiceUnderTest under;
    panel::Plant plant;
    std::unique_ptr<AlarmParts> parts;
    MadeUpPanel window;
};

} // namespace

TEST(AlarmParts, AJournalThatCannotBeWrittenIsToldAndThePanelGoesOn)
{
    Options options;
    options.journal = QStringLiteral("/dev/null/journal.sqlite");
    Parts parts(options);

    parts.under.waitFor([&] { return parts.banner() == "The journal cannot be written"; });

    EXPECT_TRUE(parts.window.window.isVisible());
}

TEST(AlarmParts, WithoutAJournalNothingIsWrittenAndTheHistorySaysSo)
{
    Options options;
    options.noJournal = true;
    Parts parts(options);

    EXPECT_EQ(parts.parts->place().path.toStdString(), "");
    EXPECT_EQ(parts.parts->place().snapshotFolder().toStdString(), "");
    parts.window.window.openPage(1);
    QStringList told;
    for (const QLabel *empty : parts.window.window.findChildren<QLabel *>(QStringLiteral("empty")))
        told.append(empty->text());
    EXPECT_TRUE(told.contains(QStringLiteral("No journal is kept.")));
}

TEST(JournalPlace, ADemonstrationKeepsOneOfItsOwnAndRemovesIt)
{
    Options options;
    options.demo = true;
    QString path;
    {
        const JournalPlace place = journalPlaceOf(options);
        path = place.path;
        EXPECT_TRUE(QFileInfo(path).dir().exists());
    }

    EXPECT_FALSE(QFileInfo(path).dir().exists());
}

TEST(JournalPlace, IsTheOneThatWasAskedForAndSnapshotsLieBesideIt)
{
    Options options;
    options.demo = true;
    options.journal = QStringLiteral("/srv/line/journal.sqlite");

    const JournalPlace place = journalPlaceOf(options);

    EXPECT_EQ(place.path.toStdString(), "/srv/line/journal.sqlite");
    EXPECT_EQ(place.snapshotFolder().toStdString(), "/srv/line/snapshots");
}
