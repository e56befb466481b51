// SPDX-License-Identifier: MIT
// The page of ports, plan and configuration: in reach of a finger, and what its buttons do.
#include "made_up_connect.h"
#include "widget_walk.h"

#include <QLineEdit>
#include <QPlainTextEdit>

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;

namespace {

std::string lines(const QStringList &texts)
{
    return texts.join(QLatin1Char('\n')).toStdString();
}

void click(MadeUpConnect &made, const char *text)
{
    const auto buttons = made.page->findChildren<FlatButton *>();
    for (FlatButton *found : buttons) {
        if (found->isVisible() && found->text() == QLatin1String(text)) {
            found->click();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            return made.show();
        }
    }
    FAIL() << "no button " << text;
}

class EverySizeOfConnect : public ::testing::TestWithParam<QSize> { };

} // namespace

TEST_P(EverySizeOfConnect, EachViewIsInReachAndWhole)
{
    for (const auto view : { ConnectPage::Ports, ConnectPage::Plan, ConnectPage::Configuration }) {
        MadeUpConnect made(GetParam());
        made.page->open(view);
        made.show();

        EXPECT_EQ(lines(wrongTargets(made.panel.window)), "") << view;
        EXPECT_EQ(lines(wrongStop(made.panel.window)), "") << view;
        EXPECT_EQ(lines(cutTexts(made.panel.window)), "") << view;
    }
}

TEST_P(EverySizeOfConnect, TheSheetIsInReach)
{
    MadeUpConnect made(GetParam());
    made.page->open(ConnectPage::Configuration);

    click(made, "Open another...");

    EXPECT_EQ(lines(wrongTargets(made.panel.window)), "");
    EXPECT_EQ(lines(wrongStop(made.panel.window)), "");
    EXPECT_EQ(lines(cutTexts(made.panel.window)), "");
}

INSTANTIATE_TEST_SUITE_P(Window, EverySizeOfConnect,
                         ::testing::Values(QSize(800, 480), QSize(1280, 800), QSize(1920, 1080)));

TEST(ConnectPage, AFileBesideTheOneThatRunsIsOneTapAway)
{
    MadeUpConnect made;
    click(made, "Configuration");
    click(made, "Open another...");

    click(made, "other.toml");
    made.view.finish();
    made.show();
    click(made, "Take over");

    EXPECT_EQ(made.view.opened().file.toStdString(), "/etc/other.toml");
    EXPECT_EQ(made.reloaded.size(), 1U);
}

TEST(ConnectPage, ErrorsStandAtTheirLine)
{
    MadeUpConnect made;
    made.next.errors.append({ 1, QStringLiteral("unknown key \"speeed\"") });
    made.next.text = QStringList { QStringLiteral("speeed = 1") };
    click(made, "Configuration");
    click(made, "Open another...");

    made.page->findChild<QLineEdit *>()->setText(QStringLiteral("/tmp/x.toml"));
    click(made, "Open this path");
    made.view.finish();
    made.show();

    EXPECT_EQ(made.page->findChild<QPlainTextEdit *>()->toPlainText().toStdString(),
              "Line 1:  speeed = 1\nunknown key \"speeed\"");
    EXPECT_EQ(made.page->findChild<QLabel *>(QStringLiteral("head"))->text().toStdString(),
              "/tmp/x.toml has errors; /etc/plant.toml goes on");
}
