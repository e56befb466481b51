// SPDX-License-Identifier: MIT
// A record of the past as a file, and back.
#include "panel/past/past_file.h"

#include "host/base/whole_file.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <chrono>
#include <utility>

namespace dx4::panel {
namespace {

constexpr int fileVersion = 1;
constexpr qint64 mostBytes = 64LL << 20; // a file of this kind has some hundred kilobytes

const QString formatName = QStringLiteral("dx4-panel snapshot");

struct Text {
    Q_DECLARE_TR_FUNCTIONS(dx4::panel::PastFile)
};

QString timeOf(journal::Time time)
{
    return QDateTime::fromMSecsSinceEpoch(time, Qt::UTC).toString(Qt::ISODateWithMs);
}

QJsonObject wordsOf(const QMap<int, QString> &words)
{
    QJsonObject object;
    for (auto word = words.begin(); word != words.end(); ++word)
        object.insert(QString::number(word.key()), word.value());
    return object;
}

/// Letters: what is true of a value.
QString qualityOf(const host::Value &state)
{
    QString quality;
    const std::pair<bool, char> marks[] = { { state.known, 'k' },
                                            { state.stale, 's' },
                                            { state.failed, 'f' },
                                            { state.writePending, 'w' } };
    for (const auto &[isSo, letter] : marks) {
        if (isSo)
            quality.append(QLatin1Char(letter));
    }
    return quality;
}

QJsonObject registerOf(const PastRegister &of)
{
    return { { QStringLiteral("station"), of.station },
             { QStringLiteral("type"), of.regType },
             { QStringLiteral("address"), of.address },
             { QStringLiteral("name"), of.name },
             { QStringLiteral("unit"), of.scaling.unit },
             { QStringLiteral("factor"), of.scaling.factor },
             { QStringLiteral("offset"), of.scaling.offset },
             { QStringLiteral("signed"), of.scaling.isSigned },
             { QStringLiteral("decimals"), of.scaling.decimals } };
}

QJsonValue optionalOf(const std::optional<int> &number)
{
    return number ? QJsonValue(*number) : QJsonValue();
}

QJsonObject parameterOf(const journal::Event &event)
{
    return { { QStringLiteral("time"), timeOf(event.time) },
             { QStringLiteral("station"), event.station },
             { QStringLiteral("type"), event.regType },
             { QStringLiteral("address"), event.address },
             { QStringLiteral("before"), optionalOf(event.before) },
             { QStringLiteral("after"), optionalOf(event.after) },
             { QStringLiteral("text"), event.text } };
}

QJsonArray registersOf(const PastRecord &record)
{
    QJsonArray array;
    for (const PastRegister &of : record.registers)
        array.append(registerOf(of));
    return array;
}

QJsonArray valuesOf(const PastRecord &record)
{
    QJsonArray array;
    for (const PastChange &change : record.changes) {
        const auto age =
            std::chrono::duration_cast<std::chrono::milliseconds>(change.state.age).count();
        array.append(QJsonArray { static_cast<double>(change.time - record.faultAt), change.place,
                                  change.state.value, qualityOf(change.state),
                                  static_cast<double>(age) });
    }
    return array;
}

QJsonArray linesOf(const PastRecord &record)
{
    QJsonArray array;
    for (const PastLine &line : record.line)
        array.append(
            QJsonArray { static_cast<double>(line.time - record.faultAt), line.downReason });
    return array;
}

QJsonArray framesOf(const PastRecord &record)
{
    QJsonArray array;
    for (const PastFrame &frame : *record.frames)
        array.append(
            QJsonArray { static_cast<double>(frame.time - record.faultAt),
                         frame.isRequest ? QStringLiteral("request") : QStringLiteral("reply"),
                         QString::fromLatin1(frame.bytes.toHex()) });
    return array;
}

journal::Time timeIn(const QJsonArray &row, const PastRecord &record)
{
    return record.faultAt + static_cast<journal::Time>(row.at(0).toDouble());
}

/// Takes a file apart; the first thing that is wrong stays.
class Reader {
public:
    explicit Reader(const QJsonObject &root)
        : m_root(root)
    {
    }

    bool read(PastRecord *record);
    const QString &error() const { return m_error; }

private:
    bool fail(const QString &what)
    {
        if (m_error.isEmpty())
            m_error = Text::tr("\"%1\" is missing or is not what it should be").arg(what);
        return false;
    }
    bool readTime(const QJsonObject &of, const char *key, journal::Time *time);
    bool readWords(const char *key, QMap<int, QString> *words);
    bool readRegisters(PastRecord *record);
    bool readValues(PastRecord *record);
    bool readLines(PastRecord *record);
    bool readFrames(PastRecord *record);
    bool readParameters(PastRecord *record);
    bool readRows(const char *key, int columns, QJsonArray *rows);

    const QJsonObject m_root;
    QString m_error;
};

bool Reader::read(PastRecord *record)
{
    const QJsonObject fault = m_root.value(QStringLiteral("fault")).toObject();
    record->station = fault.value(QStringLiteral("station")).toInt();
    record->code = fault.value(QStringLiteral("code")).toInt();
    return readTime(fault, "time", &record->faultAt) && readTime(m_root, "from", &record->from)
        && readTime(m_root, "to", &record->to) && readWords("drives", &record->drives)
        && readWords("states", &record->states) && readWords("faults", &record->faults)
        && readRegisters(record) && readValues(record) && readLines(record) && readFrames(record)
        && readParameters(record);
}

bool Reader::readTime(const QJsonObject &of, const char *key, journal::Time *time)
{
    const QDateTime read =
        QDateTime::fromString(of.value(QLatin1String(key)).toString(), Qt::ISODateWithMs);
    *time = read.toMSecsSinceEpoch();
    return read.isValid() || fail(QLatin1String(key));
}

bool Reader::readWords(const char *key, QMap<int, QString> *words)
{
    const QJsonValue value = m_root.value(QLatin1String(key));
    if (!value.isObject())
        return fail(QLatin1String(key));
    const QJsonObject object = value.toObject();
    for (auto word = object.begin(); word != object.end(); ++word)
        words->insert(word.key().toInt(), word.value().toString());
    return true;
}

bool Reader::readRegisters(PastRecord *record)
{
    const QJsonValue value = m_root.value(QStringLiteral("registers"));
    if (!value.isArray())
        return fail(QStringLiteral("registers"));
    const QJsonArray array = value.toArray();
    for (const QJsonValue &element : array) {
        const QJsonObject object = element.toObject();
        const auto of = [&](const char *key) { return object.value(QLatin1String(key)); };
        PastRegister one;
        one.station = of("station").toInt();
        one.regType = of("type").toString();
        one.address = of("address").toInt();
        one.name = of("name").toString();
        one.scaling.unit = of("unit").toString();
        one.scaling.factor = of("factor").toDouble(1.0);
        one.scaling.offset = of("offset").toDouble();
        one.scaling.isSigned = of("signed").toBool();
        one.scaling.decimals = std::clamp(of("decimals").toInt(), 0, 6);
        record->registers.append(one);
    }
    return true;
}

bool Reader::readRows(const char *key, int columns, QJsonArray *rows)
{
    const QJsonValue value = m_root.value(QLatin1String(key));
    *rows = value.toArray();
    const bool isWhole = std::all_of(rows->begin(), rows->end(), [&](const QJsonValue &row) {
        return row.toArray().size() == columns;
    });
    return (value.isArray() && isWhole) || fail(QLatin1String(key));
}

bool Reader::readValues(PastRecord *record)
{
    QJsonArray rows;
    if (!readRows("values", 5, &rows))
        return false;
    for (const QJsonValue &element : std::as_const(rows)) {
        const QJsonArray row = element.toArray();
        PastChange change;
        change.time = timeIn(row, *record);
        change.place = row.at(1).toInt(-1);
        if (change.place < 0 || change.place >= record->registers.size())
            return fail(QStringLiteral("values"));
        const QString quality = row.at(3).toString();
        change.state.value = static_cast<quint16>(row.at(2).toInt());
        change.state.known = quality.contains(QLatin1Char('k'));
        change.state.stale = quality.contains(QLatin1Char('s'));
        change.state.failed = quality.contains(QLatin1Char('f'));
        change.state.writePending = quality.contains(QLatin1Char('w'));
        change.state.age = std::chrono::milliseconds(static_cast<qint64>(row.at(4).toDouble()));
        record->changes.append(change);
    }
    return true;
}

bool Reader::readLines(PastRecord *record)
{
    QJsonArray rows;
    if (!readRows("line", 2, &rows))
        return false;
    for (const QJsonValue &element : std::as_const(rows)) {
        const QJsonArray row = element.toArray();
        record->line.append({ timeIn(row, *record), row.at(1).toString() });
    }
    return true;
}

bool Reader::readFrames(PastRecord *record)
{
    if (!m_root.contains(QStringLiteral("frames")))
        return true;
    QJsonArray rows;
    if (!readRows("frames", 3, &rows))
        return false;
    record->frames.emplace();
    for (const QJsonValue &element : std::as_const(rows)) {
        const QJsonArray row = element.toArray();
        record->frames->append({ timeIn(row, *record),
                                 row.at(1).toString() == QLatin1String("request"),
                                 QByteArray::fromHex(row.at(2).toString().toLatin1()) });
    }
    return true;
}

bool Reader::readParameters(PastRecord *record)
{
    if (!m_root.contains(QStringLiteral("parameters")))
        return true;
    record->parameters.emplace();
    const QJsonArray array = m_root.value(QStringLiteral("parameters")).toArray();
    for (const QJsonValue &element : array) {
        const QJsonObject object = element.toObject();
        const auto of = [&](const char *key) { return object.value(QLatin1String(key)); };
        journal::Event event;
        event.kind = journal::EventKind::Parameter;
        if (!readTime(object, "time", &event.time))
            return fail(QStringLiteral("parameters"));
        event.station = of("station").toInt();
        event.regType = of("type").toString();
        event.address = of("address").toInt();
        if (of("before").isDouble())
            event.before = of("before").toInt();
        if (of("after").isDouble())
            event.after = of("after").toInt();
        event.text = of("text").toString();
        record->parameters->append(event);
    }
    return true;
}

std::optional<PastRecord> refuse(QString *error, const QString &why)
{
    *error = why;
    return std::nullopt;
}

} // namespace

QByteArray jsonOf(const PastRecord &record)
{
    QJsonObject root {
        { QStringLiteral("format"), formatName },
        { QStringLiteral("version"), fileVersion },
        { QStringLiteral("fault"),
          QJsonObject { { QStringLiteral("time"), timeOf(record.faultAt) },
                        { QStringLiteral("station"), record.station },
                        { QStringLiteral("code"), record.code } } },
        { QStringLiteral("from"), timeOf(record.from) },
        { QStringLiteral("to"), timeOf(record.to) },
        { QStringLiteral("drives"), wordsOf(record.drives) },
        { QStringLiteral("states"), wordsOf(record.states) },
        { QStringLiteral("faults"), wordsOf(record.faults) },
        { QStringLiteral("registers"), registersOf(record) },
        { QStringLiteral("values"), valuesOf(record) },
        { QStringLiteral("line"), linesOf(record) },
    };
    if (record.frames)
        root.insert(QStringLiteral("frames"), framesOf(record));
    if (record.parameters) {
        QJsonArray parameters;
        for (const journal::Event &event : *record.parameters)
            parameters.append(parameterOf(event));
        root.insert(QStringLiteral("parameters"), parameters);
    }
    return QJsonDocument(root).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<PastRecord> recordOf(const QByteArray &json, QString *error)
{
    QJsonParseError parsed;
    const QJsonObject root = QJsonDocument::fromJson(json, &parsed).object();
    if (parsed.error != QJsonParseError::NoError)
        return refuse(error, Text::tr("it is no JSON: %1").arg(parsed.errorString()));
    if (root.value(QStringLiteral("format")).toString() != formatName)
        return refuse(error, Text::tr("it is no snapshot of a fault"));
    const int version = root.value(QStringLiteral("version")).toInt();
    if (version != fileVersion)
        return refuse(error,
                      Text::tr("it is of version %1; this program knows version 1").arg(version));
    PastRecord record;
    Reader reader(root);
    if (!reader.read(&record))
        return refuse(error, reader.error());
    return record;
}

bool savePast(const PastRecord &record, const QString &file, QString *error)
{
    return host::replaceFile(file, jsonOf(record), error);
}

std::optional<PastRecord> loadPast(const QString &file, QString *error)
{
    QFile from(file);
    if (!from.open(QIODevice::ReadOnly))
        return refuse(error, QStringLiteral("%1: %2").arg(file, from.errorString()));
    const QByteArray json = from.read(mostBytes + 1);
    if (json.size() > mostBytes)
        return refuse(error, Text::tr("%1: it is too large for a snapshot of a fault").arg(file));
    QString why;
    auto record = recordOf(json, &why);
    if (!record)
        *error = QStringLiteral("%1: %2").arg(file, why);
    return record;
}

} // namespace dx4::panel
