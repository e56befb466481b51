// SPDX-License-Identifier: MIT
// The figures as a table and as JSON.
#include "report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace bench {
namespace {

std::string text(double value, int digits)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f", digits, value);
    return buffer;
}

std::string cell(const Figure &figure, const std::optional<double> &value)
{
    if (!value)
        return "";
    if (figure.unit != "ns")
        return text(*value, 2) + " " + figure.unit;
    return *value < 10000 ? text(*value, 1) + " ns" : text(*value / 1000, 1) + " us";
}

std::string ratioCell(const Figure &figure)
{
    std::string cell;
    for (const Ratio &ratio : figure.ratios) {
        if (!cell.empty())
            cell += ", ";
        cell += text(ratio.value, 2) + " of at most " + text(ratio.bound, 2);
        if (!ratio.against.empty())
            cell += " " + ratio.against;
        if (!ratio.isReached())
            cell += " (!)";
    }
    return cell;
}

QJsonObject jsonOf(const Figure &figure)
{
    QJsonObject object { { QStringLiteral("what"), QString::fromStdString(figure.what) },
                         { QStringLiteral("unit"), QString::fromStdString(figure.unit) },
                         { QStringLiteral("reached"), figure.isReached() } };
    const auto put = [&object](const char *name, const std::optional<double> &value) {
        if (value)
            object.insert(QLatin1String(name), *value);
    };
    put("driver", figure.driver);
    put("limit", figure.limit);
    put("libmodbus", figure.libmodbus);
    put("map", figure.map);
    put("other", figure.other);
    QJsonArray ratios;
    for (const Ratio &ratio : figure.ratios) {
        ratios.append(
            QJsonObject { { QStringLiteral("against"), QString::fromStdString(ratio.against) },
                          { QStringLiteral("value"), ratio.value },
                          { QStringLiteral("bound"), ratio.bound } });
    }
    object.insert(QStringLiteral("ratios"), ratios);
    return object;
}

} // namespace

std::string tableOf(const std::vector<Figure> &figures)
{
    std::string table = "| what | driver | limit | libmodbus | map | other | ratio | reached |\n"
                        "|---|---|---|---|---|---|---|---|\n";
    for (const Figure &figure : figures) {
        table += "| " + figure.what + " | " + cell(figure, figure.driver) + " | "
            + cell(figure, figure.limit) + " | " + cell(figure, figure.libmodbus) + " | "
            + cell(figure, figure.map) + " | " + cell(figure, figure.other) + " | "
            + ratioCell(figure) + " | " + (figure.isReached() ? "yes" : "no") + " |\n";
    }
    return table;
}

QByteArray jsonOf(const std::vector<Figure> &figures, int rounds)
{
    QJsonArray list;
    for (const Figure &figure : figures)
        list.append(jsonOf(figure));
    const QJsonObject all { { QStringLiteral("rounds"), rounds },
                            { QStringLiteral("figures"), list } };
    return QJsonDocument(all).toJson();
}

} // namespace bench
