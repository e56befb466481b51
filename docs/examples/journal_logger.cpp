// SPDX-License-Identifier: MIT
// Keeps what one line tells in a journal until a signal comes, and prints the events as they come.
#include "host/writes/stop_signal.h"
#include "journal/journal_keeper.h"
#include "journal/journal_reader.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTextStream>
#include <QTimer>

using namespace dx4;

namespace {

/// Prints the events behind `last`, and notes the newest.
void printNew(const QString &path, qint64 *last)
{
    journal::Trouble trouble;
    const auto reader = journal::JournalReader::open(path, &trouble);
    journal::EventQuery query;
    query.after = *last;
    query.isOldestFirst = true;
    const auto events = reader ? reader->events(query) : std::nullopt;
    for (const journal::Event &event : events.value_or(QVector<journal::Event>())) {
        QTextStream(stdout) << event.text << '\n';
        *last = event.id;
    }
}

} // namespace

int main(int argc, char **argv)
{
    const host::StopSignal signal; // before any other thread starts
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        QTextStream(stderr) << "usage: journal_logger PORT DRIVER JOURNAL\n";
        return 2;
    }
    const QString path = arguments.at(3);
    journal::JournalKeeper keeper(path);
    QObject::connect(&keeper, &journal::JournalKeeper::troubled,
                     [](const QString &why) { QTextStream(stderr) << why << '\n'; });
    host::LineSettings line;
    line.port = arguments.at(1);
    host::LineService service(host::serialLine(line, arguments.at(2)));
    keeper.watch(service, line.port);

    qint64 last = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { printNew(path, &last); });
    timer.start(1000);
    const QSocketNotifier notifier(signal.descriptor(), QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    return QCoreApplication::exec();
}
