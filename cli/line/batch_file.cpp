// SPDX-License-Identifier: MIT
// What a file of commands asks for.
#include "cli/line/batch_file.h"

#include "cli/console/nearest_word.h"
#include "cli/line/writing.h"
#include "host/base/number_text.h"
#include "wire/limits.h"

#include <QRegularExpression>

namespace dx4::cli {
namespace {

constexpr int longestWait = 86400000; // ms

class LineReader {
public:
    LineReader(const LineOptions &options, const host::DriverApi &api)
        : m_options(options)
        , m_api(api)
    {
    }

    std::optional<BatchStep> read(const QString &text, Failure *failure)
    {
        const QString command = text.section(QLatin1Char(' '), 0, 0);
        const QString rest = text.section(QLatin1Char(' '), 1);
        if (command == QLatin1String("set"))
            return set(rest, failure);
        if (command == QLatin1String("get"))
            return get(rest, failure);
        if (command == QLatin1String("wait"))
            return wait(rest, failure);
        if (command == QLatin1String("stop"))
            return stop(rest, failure);
        const QStringList known { QStringLiteral("set"), QStringLiteral("get"),
                                  QStringLiteral("wait"), QStringLiteral("stop") };
        return refuse(failure,
                      filled("no command \"%1\"; a file has %2%3", command,
                             known.join(QStringLiteral(", ")), suggestion(command, known)));
    }

private:
    std::optional<BatchStep> set(const QString &rest, Failure *failure) const
    {
        const QStringList words =
            rest.contains(QLatin1Char('=')) ? QStringList { rest } : rest.split(QLatin1Char(' '));
        const auto settings =
            parseSettings(words, usualStation(m_options), m_options.plant, m_api, failure);
        if (!settings || !mayDriveAll(m_options, *settings, failure))
            return std::nullopt;
        return BatchStep { 0, BatchStep::Kind::Set, settings->constFirst(), {} };
    }

    std::optional<BatchStep> get(const QString &rest, Failure *failure) const
    {
        const auto targets =
            parseTargets({ rest }, usualStation(m_options), ReadAccess, m_api, failure);
        if (!targets)
            return std::nullopt;
        return BatchStep { 0, BatchStep::Kind::Get, {}, *targets };
    }

    static std::optional<BatchStep> wait(const QString &rest, Failure *failure)
    {
        const auto span = host::parseWholeNumber(rest);
        if (!span || *span < 0 || *span > longestWait)
            return refuse(
                failure,
                filled("\"%1\" is no time; write 0 to %2 ms, such as wait 500", rest, longestWait));
        BatchStep step;
        step.wait = std::chrono::milliseconds(*span);
        return step;
    }

    std::optional<BatchStep> stop(const QString &rest, Failure *failure) const
    {
        BatchStep step;
        step.kind = BatchStep::Kind::Stop;
        step.station =
            rest.isEmpty() ? m_options.station : host::parseWholeNumber(rest).value_or(0);
        const bool isNone = step.station < 1 || step.station > lastStation;
        if (isNone && !rest.isEmpty())
            return refuse(failure,
                          filled("no station \"%1\"; write 1 to 247, such as stop 2", rest));
        if (!mayDrive(m_options, step.station, failure))
            return std::nullopt;
        return step;
    }

    const LineOptions &m_options;
    const host::DriverApi &m_api;
};

} // namespace

std::optional<QVector<BatchStep>> parseBatch(const QString &text, const LineOptions &options,
                                             const host::DriverApi &api,
                                             QVector<host::ConfigError> *errors)
{
    static const QRegularExpression comment(QStringLiteral("(^|\\s)#.*$"));
    QVector<BatchStep> steps;
    int number = 0;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        ++number;
        const QString command = QString(line).remove(comment).simplified();
        if (command.isEmpty())
            continue;
        Failure failure;
        auto step = LineReader(options, api).read(command, &failure);
        if (!step) {
            errors->append({ number, failure.text });
            continue;
        }
        step->line = number;
        steps.append(*step);
    }
    return errors->isEmpty() ? std::optional(steps) : std::nullopt;
}

} // namespace dx4::cli
