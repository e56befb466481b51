// SPDX-License-Identifier: MIT
// A journal on the installed library: one note, written and read again.
#include <journal/journal_keeper.h>
#include <journal/journal_reader.h>

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdio>

using namespace dx4::journal;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("journal.sqlite"));
    JournalKeeper keeper(path);
    Event event;
    event.text = QStringLiteral("a note");
    keeper.note(event);
    const bool isWritten = keeper.flush();

    Trouble trouble;
    const auto reader = JournalReader::open(path, &trouble);
    EventQuery query;
    query.kinds = { EventKind::Notice };
    const auto events = reader ? reader->events(query) : std::nullopt;
    std::printf("%d notes %s\n", events ? int(events->size()) : -1, qPrintable(trouble.text));
    return isWritten && events && events->size() == 1 ? 0 : 1;
}
