// SPDX-License-Identifier: MIT
// A panel on a line that a test makes up, with a clock of its own.
#include "panel_fixture.h"

#include "panel/widgets/look.h"

#include <QStyleFactory>

using namespace dx4;
using namespace dx4::host;

namespace {

Scaling scaling(const char *unit, double factor, int decimals)
{
    Scaling scaling;
    scaling.unit = QString::fromUtf8(unit);
    scaling.factor = factor;
    scaling.decimals = decimals;
    return scaling;
}

RegisterValue registerOf(int station, const char *type, int address, const char *name,
                         const Scaling &how = {})
{
    RegisterValue value;
    value.station = station;
    value.regType = QString::fromLatin1(type);
    value.address = address;
    value.name = QString::fromLatin1(name);
    value.scaling = how;
    value.state.stale = true;
    return value;
}

void addDrive(LineSnapshot &snapshot, int station)
{
    const auto add = [&](const char *type, int address, const char *name, const Scaling &how = {}) {
        snapshot.registers.append(registerOf(station, type, address, name, how));
    };
    add("D", 0, "output frequency", scaling("Hz", 0.01, 2));
    add("D", 1, "set frequency", scaling("Hz", 0.01, 2));
    add("D", 2, "current", scaling("A", 0.1, 1));
    add("D", 3, "voltage", scaling("V", 1.0, 0));
    add("D", 4, "DC link", scaling("V", 1.0, 0));
    add("D", 5, "heat sink",
        scaling("\xC2\xB0"
                "C",
                0.1, 1));
    add("D", 6, "power", scaling("kW", 0.01, 2));
    add("D", 7, "speed", scaling("1/min", 1.0, 0));
    add("FU", 0, "fault");
    add("SW", 0, "status");
}

QMap<int, QString> words(const std::vector<const char *> &texts)
{
    QMap<int, QString> words;
    for (std::size_t i = 0; i < texts.size(); ++i)
        words.insert(static_cast<int>(i), QString::fromLatin1(texts[i]));
    return words;
}

QString nameOf(int station)
{
    const QStringList names { QStringLiteral("Feed pump"), QStringLiteral("Cooling fan"),
                              QStringLiteral("Conveyor") };
    return names.value(station - 1, QStringLiteral("Roller %1").arg(station));
}

} // namespace

ScreenInMemory::ScreenInMemory(int &argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_FONT_DPI", "96");
    qputenv("TZ", "UTC");
    QLocale::setDefault(QLocale::c());
    m_application = std::make_unique<QApplication>(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(panel::paletteOf(panel::lightLook()));
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(16);
    QApplication::setFont(font);
}

MadeUpLine::MadeUpLine(int drives)
    : m_utc(QDate(2026, 3, 1), QTime(12, 0), Qt::UTC)
{
    for (int station = 1; station <= drives; ++station) {
        StationConfig drive;
        drive.address = station;
        drive.name = nameOf(station);
        config.stations.append(drive);
        addDrive(next, station);
    }
    config.stop.controlWord = 0;
    control.reverse = 3;
    config.states = words({ "ready", "running", "reverse", "tripped", "at set frequency" });
    config.faults = words({ "no fault", "overcurrent", "overvoltage" });
    next.isOpen = true;
    publish();
}

panel::Clock MadeUpLine::clock()
{
    return { [this] { return m_now; }, [this] { return m_utc; } };
}

panel::LinePort MadeUpLine::port()
{
    return { [this] { return m_published; },
             [this](const WriteWish &wish) {
                 writes.push_back(wish);
                 return nextWrite == 0 ? 0 : nextWrite++;
             },
             [this](Duration) { return ++stops; } };
}

RegisterValue *MadeUpLine::find(int station, const char *type, int address)
{
    for (RegisterValue &value : next.registers) {
        const bool isIt = value.station == station && value.regType == QLatin1String(type)
            && value.address == address;
        if (isIt)
            return &value;
    }
    return nullptr;
}

void MadeUpLine::read(int station, const char *type, int address, quint16 value)
{
    Value state;
    state.value = value;
    state.known = true;
    find(station, type, address)->state = state;
}

void MadeUpLine::readRunning(int station)
{
    const quint16 values[] = { 4998, 5000, 62, 397, 612, 413, 341, 1499 };
    for (int i = 0; i < 8; ++i)
        read(station, "D", i, values[i]);
    read(station, "SW", 0, 0x13);
    read(station, "FU", 0, 0);
}

void MadeUpLine::readStanding(int station)
{
    const quint16 values[] = { 0, 5000, 0, 0, 566, 250, 0, 0 };
    for (int i = 0; i < 8; ++i)
        read(station, "D", i, values[i]);
    read(station, "SW", 0, 0x01);
    read(station, "FU", 0, 0);
}

void MadeUpLine::publish()
{
    next.takenAt = m_utc;
    m_published = std::make_shared<LineSnapshot>(next);
}

void MadeUpLine::advance(Duration span)
{
    m_now += span;
    m_utc = m_utc.addMSecs(std::chrono::duration_cast<std::chrono::milliseconds>(span).count());
    for (RegisterValue &value : next.registers)
        value.state.age += value.state.known ? span : Duration(0);
}

MadeUpPanel::MadeUpPanel(int drives, QSize size)
    : made(drives)
    , line(made.port(), made.config, panel::wordsOf(made.config, made.control), made.clock())
    , window(line, made.clock().steady)
{
    window.resize(size);
    window.show();
}

void MadeUpPanel::show()
{
    made.publish();
    window.refresh();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
}

WriteOutcome ended(int id, WriteEnd end, const char *text, int station)
{
    WriteOutcome outcome;
    outcome.id = id;
    outcome.end = end;
    outcome.sent = end != WriteEnd::Refused;
    outcome.text = QString::fromLatin1(text);
    outcome.wish.station = station;
    return outcome;
}
