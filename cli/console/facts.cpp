// SPDX-License-Identifier: MIT
// Results of commands: facts that are each spelled once, written as JSON, as text or as cells.
#include "cli/console/facts.h"

#include "cli/console/output.h"

namespace dx4::cli {
namespace {

QString textOf(const Fact &fact)
{
    return fact.text.isNull() ? fact.value.toVariant().toString() : fact.text;
}

QString laidOut(const char *layout, const Facts &facts)
{
    QStringList parts = QString::fromLatin1(layout).split(QLatin1Char('{'));
    QString text = parts.takeFirst();
    for (const QString &part : std::as_const(parts)) {
        const QString key = part.section(QLatin1Char('}'), 0, 0);
        for (const Fact &fact : facts) {
            if (key == QLatin1String(fact.key))
                text += textOf(fact);
        }
        text += part.section(QLatin1Char('}'), 1);
    }
    return text;
}

} // namespace

QJsonValue valueIf(bool isThere, const QJsonValue &value)
{
    return isThere ? value : QJsonValue::Undefined;
}

QJsonObject jsonOf(const Facts &facts)
{
    QJsonObject object;
    for (const Fact &fact : facts)
        object.insert(QLatin1String(fact.key), fact.value);
    return object;
}

QStringList cellsOf(const Facts &facts)
{
    QStringList cells;
    for (const Fact &fact : facts)
        cells.append(textOf(fact));
    return cells;
}

void printJson(const Facts &facts)
{
    printLine(jsonText(jsonOf(facts)));
}

void print(bool json, const Facts &facts, const char *layout)
{
    json ? printJson(facts) : printLine(laidOut(layout, facts));
}

} // namespace dx4::cli
