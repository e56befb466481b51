// SPDX-License-Identifier: MIT
// The page of the parameters in its states, as files.
#include "parameters_pictures.h"

#include "parameters_fixture.h"

#include <functional>

using namespace dx4;

namespace {

struct Scene {
    const char *name;
    bool hasJournal;
    std::function<void(ParametersPanel &)> play;
};

void compared(ParametersPanel &made)
{
    made.compare();
    made.panel.made.advance(std::chrono::seconds(40));
    made.page->book().tick({ at(8, 2), at(10, 13) }, true);
    made.show();
}

host::RestoreReport partlyTaken()
{
    host::RestoreReport report;
    report.compared = 2;
    report.written = 1;
    report.verified = 0;
    report.refused = QStringList(
        QStringLiteral("station 1, F 8.2 (0xF802): illegal data value: out of the drive's range"));
    report.remaining = { { at(10, 13), quint16 { 680 }, quint16 { 13 } } };
    return report;
}

QVector<Scene> scenes()
{
    return {
        { "unread", false, [](ParametersPanel &) {} },
        { "reading", false,
          [](ParametersPanel &made) {
              made.click("Read");
              made.page->book().noteProgress(1, 60, 203);
          } },
        { "read", true,
          [](ParametersPanel &made) {
              made.page->book().read();
              made.page->book().noteBackedUp(1, tunedSet(1), {});
          } },
        { "compared", true, compared },
        { "all", false,
          [](ParametersPanel &made) {
              compared(made);
              made.click("Only what differs");
              made.click("F 8");
          } },
        { "source", false, [](ParametersPanel &made) { made.click("Left: nothing"); } },
        { "save", false,
          [](ParametersPanel &made) {
              compared(made);
              made.click("Save...");
          } },
        { "search", false,
          [](ParametersPanel &made) {
              compared(made);
              made.click("Find...");
              made.click("4");
              made.click(".");
          } },
        { "apply", false,
          [](ParametersPanel &made) {
              compared(made);
              made.click("Apply 2...");
          } },
        { "apply_other", false,
          [](ParametersPanel &made) {
              made.compare(2);
              made.standing = panel::Standing::Runs;
              made.page->book().tick({ at(8, 2) }, true);
              made.show();
              made.click("Apply 1...");
          } },
        { "report", false,
          [](ParametersPanel &made) {
              compared(made);
              made.click("Apply 2...");
              made.hold("Hold to write 2 registers");
              made.page->restore().noteRestored(501, partlyTaken());
          } },
        { "detail", true,
          [](ParametersPanel &made) {
              compared(made);
              Q_EMIT made.page->findChild<panel::ParameterView *>()->opened(at(8, 2));
          } },
        { "note", false,
          [](ParametersPanel &made) {
              made.page->book().read();
              made.page->book().noteBackedUp(
                  1, {}, QStringLiteral("station 1 does not answer: no reply within 200 ms"));
          } },
    };
}

} // namespace

void drawParameters(QSize size, const char *look, const QDir &folder)
{
    for (const Scene &scene : scenes()) {
        ParametersPanel made(size, scene.hasJournal);
        scene.play(made);
        made.show();
        const QString name = QStringLiteral("parameters_%1-%2-%3.png")
                                 .arg(QLatin1String(scene.name))
                                 .arg(size.width())
                                 .arg(QLatin1String(look));
        made.panel.window.grab().save(folder.filePath(name));
    }
}
