// SPDX-License-Identifier: MIT
// Measures the driver beside its peers in one run and prints the ratios.
#include "driver_link.h"
#include "report.h"
#include "samples.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <malloc.h>

#include <cstdio>

namespace {

constexpr int usageError = 2;

struct Options {
    int rounds;
    std::string filter;
    QString jsonFile;
};

Options optionsOf(const QCoreApplication &application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Measures the driver beside its peers and prints the ratios."));
    parser.addHelpOption();
    const QCommandLineOption rounds(QStringLiteral("rounds"), QStringLiteral("Rounds, 9."),
                                    QStringLiteral("count"), QStringLiteral("9"));
    const QCommandLineOption filter(QStringLiteral("filter"),
                                    QStringLiteral("Measurements to run, such as ^write."),
                                    QStringLiteral("regex"), QStringLiteral("."));
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Also writes the figures to a file."),
                                  QStringLiteral("file"));
    parser.addOptions({ rounds, filter, json });
    parser.process(application);
    bool isNumber = false;
    const int count = parser.value(rounds).toInt(&isNumber);
    if (!isNumber || count < 1) {
        std::fprintf(stderr, "korvane_bench: --rounds takes a number from 1 on\n");
        std::exit(usageError);
    }
    return { count, parser.value(filter).toStdString(), parser.value(json) };
}

// Peers are registered side by side, so a round measures them one right after the other.
bench::Samples runAll(const Options &options)
{
    bench::addCycleBenchmarks();
    bench::addDataBenchmarks();
    bench::addMergeBenchmarks();
    bench::addWriteBenchmarks();
    bench::addPtyBenchmarks();
    bench::addLoadBenchmarks();
    bench::Samples samples;
    bench::countCycleAllocations(samples);
    bench::countDataAllocations(samples);
    bench::countRegisterBytes(samples);
    for (int round = 1; round <= options.rounds; ++round) {
        std::fprintf(stderr, "round %d of %d\n", round, options.rounds);
        bench::Collector collector(samples);
        benchmark::RunSpecifiedBenchmarks(&collector, options.filter);
    }
    return samples;
}

bool writeJson(const QString &name, const QByteArray &text)
{
    QFile file(name);
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
    if (!isWritten)
        std::fprintf(stderr, "korvane_bench: %s: %s\n", qPrintable(name),
                     qPrintable(file.errorString()));
    return isWritten;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const Options options = optionsOf(application);
    // Memory given back to the system would have to be fetched again in every round, which costs
    // more than what is measured.
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    const std::vector<bench::Figure> figures = bench::figuresOf(runAll(options));
    std::fputs(bench::tableOf(figures).c_str(), stdout);
    const bool wantsFile = !options.jsonFile.isEmpty();
    return !wantsFile || writeJson(options.jsonFile, bench::jsonOf(figures, options.rounds)) ? 0
                                                                                             : 1;
}
