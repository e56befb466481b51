// SPDX-License-Identifier: MIT
// A page of the line on counters and frames that a test makes up.
#include "made_up_view.h"

#include "host_bytes.h"

using namespace dx4;
using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

/// 2026-03-01 12:00 UTC.
constexpr Duration noon = seconds(1772366400);

FRAME_PRO requestOf(int station, bool isWrite)
{
    FRAME_PRO request;
    request.frame[0] = static_cast<unsigned char>(station);
    request.frame[1] = isWrite ? 6 : 3;
    request.sendLength = 8;
    request.var.station = station;
    request.var.regType = isWrite ? QStringLiteral("CW") : QStringLiteral("D");
    request.var.count = isWrite ? 1 : 8;
    return request;
}

} // namespace

void MadeUpCounters::count(int station, ReplyCause cause, int times, int delayMs, bool isWrite,
                           int exceptionCode)
{
    const FRAME_PRO request = requestOf(station, isWrite);
    ExchangeReport report;
    report.verdict = { cause, cause == ReplyCause::Exception ? exceptionCode : 0 };
    report.bytesHeard = cause == ReplyCause::Silence ? 0 : 21;
    report.answerDelay = milliseconds(delayMs);
    for (int i = 0; i < times; ++i) {
        m_counts.countExchange(request, report, milliseconds(30));
        if (cause != ReplyCause::Good)
            m_counts.countRetry(request);
    }
}

MadeUpLinePage::MadeUpLinePage(int drives, QSize size)
    : panel(drives, size)
    , view({ panel.made.port().snapshot, [this] { ++asked; }, tap }, panel.made.config,
           panel.made.clock())
    , page(new panel::LinePage(
          view,
          [] {
              return QVector<panel::Place> { { QStringLiteral("Home"), QStringLiteral("/home/me") },
                                             { QStringLiteral("STICK"),
                                               QStringLiteral("/media/me/STICK") } };
          },
          [] { return QDateTime(QDate(2026, 3, 1), QTime(12, 0)); }))
{
    panel.window.addPage(page, QStringLiteral("Line"));
    panel.window.openPage(panel.window.pageCount() - 1);
}

void MadeUpLinePage::counted(Duration span)
{
    view.noteCounters(counters.after(span));
}

void MadeUpLinePage::passed(int station, const char *reply)
{
    passedBytes(station, *reply ? frameOf(reply) : QByteArray());
}

void MadeUpLinePage::passedBytes(int station, const QByteArray &reply)
{
    const QByteArray address = QByteArray::number(station, 16).rightJustified(2, '0');
    m_frameTime += milliseconds(40);
    QVector<RecordedFrame> frames { { m_frameTime, true,
                                      frameOf((address + "03D0000002").constData()) } };
    if (!reply.isEmpty())
        frames.append({ m_frameTime + milliseconds(30), false, reply });
    tap->add(frames, noon);
}

void MadeUpLinePage::show()
{
    panel.show();
}

void playBadCable(MadeUpLinePage &page)
{
    for (int station = 1; station <= 2; ++station) {
        page.counters.count(station, ReplyCause::Good, 640, 4 + 4 * station);
        page.counters.count(station, ReplyCause::Good, 60, 18);
    }
    page.counters.count(3, ReplyCause::Good, 672, 8);
    page.counters.count(3, ReplyCause::BadCrc, 28);
    page.counters.count(1, ReplyCause::Good, 3, 9, true);
    page.counted(seconds(66));
    QByteArray damaged = frameOf("03030413881388");
    damaged[4] = 0x17;
    for (int round = 0; round < 6; ++round) {
        page.passed(1, "01030413861388");
        page.passed(2, "02030400001388");
        if (round == 2)
            page.passedBytes(3, damaged);
        else if (round == 4)
            page.passed(3, "");
        else
            page.passed(3, "03030413881388");
    }
    page.show();
}
