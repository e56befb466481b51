// SPDX-License-Identifier: MIT
// Where a table or a picture of the trend goes.
#include "panel/trendview/trace_save_sheet.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace dx4::panel {
namespace {

QString folder()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

} // namespace

TraceSaveSheet::TraceSaveSheet(QWidget *page)
    : Sheet(tr("Save what is seen"), page)
    , m_text(new QLabel)
    , m_path(new QLineEdit)
    , m_csv(new FlatButton(tr("Table (CSV)")))
    , m_png(new FlatButton(tr("Picture (PNG)")))
    , m_save(new FlatButton(tr("Save")))
    , m_replace(new FlatButton(tr("Replace the file")))
    , m_close(new FlatButton(tr("Close")))
{
    setObjectName(QStringLiteral("save"));
    makeRows();
    connect(m_csv, &FlatButton::clicked, this, [this] { setKind(QStringLiteral("csv")); });
    connect(m_png, &FlatButton::clicked, this, [this] { setKind(QStringLiteral("png")); });
    connect(m_save, &FlatButton::clicked, this, [this] { save(FileSaver::Replace::No); });
    connect(m_replace, &FlatButton::clicked, this, [this] { save(FileSaver::Replace::Yes); });
    connect(m_close, &FlatButton::clicked, this, &TraceSaveSheet::close);
    connect(m_path, &QLineEdit::textChanged, this, [this] {
        m_replace->hide();
        tell(QString(), false);
    });
    connect(&m_saver, &FileSaver::saved, this, [this](const QString &path) {
        m_replace->hide();
        tell(tr("Saved as %1").arg(path), false);
    });
    connect(&m_saver, &FileSaver::exists, this, [this](const QString &path) {
        tell(tr("There is a file %1 already. It is as it was.").arg(path), true);
        m_replace->show();
    });
    connect(&m_saver, &FileSaver::failed, this,
            [this](const QString &why) { tell(tr("Not saved: %1").arg(why), true); });
}

void TraceSaveSheet::makeRows()
{
    auto *kinds = new QHBoxLayout;
    kinds->setSpacing(targetGap);
    for (FlatButton *kind : { m_csv, m_png }) {
        kind->setCheckable(true);
        kind->setAutoExclusive(true);
        kinds->addWidget(kind);
    }
    auto *ends = new QHBoxLayout;
    ends->setSpacing(targetGap);
    for (FlatButton *end : { m_replace, m_save, m_close })
        ends->addWidget(end);
    m_path->setMinimumHeight(targetSize);
    m_path->setAccessibleName(tr("File"));
    m_text->setObjectName(QStringLiteral("saved"));
    m_text->setWordWrap(true);
    m_text->setTextFormat(Qt::PlainText);
    content()->addLayout(kinds);
    content()->addWidget(m_path);
    content()->addWidget(m_text);
    content()->addStretch();
    content()->addLayout(ends);
}

void TraceSaveSheet::ask(const Writers &writers, Moment at)
{
    m_writers = writers;
    const QString time =
        QDateTime::fromMSecsSinceEpoch(at).toString(QStringLiteral("yyyyMMdd-HHmmss"));
    m_path->setText(QDir(folder()).filePath(QStringLiteral("trend-%1.csv").arg(time)));
    m_csv->setChecked(true);
    m_suffix = QStringLiteral("csv");
    m_replace->hide();
    tell(QString(), false);
    open();
    m_save->setFocus();
}

void TraceSaveSheet::setKind(const QString &suffix)
{
    const QFileInfo file(m_path->text());
    if (file.suffix() == m_suffix)
        m_path->setText(file.dir().filePath(file.completeBaseName() + QLatin1Char('.') + suffix));
    m_suffix = suffix;
}

void TraceSaveSheet::save(FileSaver::Replace replace)
{
    const bool isTable = m_suffix == QLatin1String("csv");
    tell(tr("Saving."), false);
    m_saver.save(m_path->text(), replace, isTable ? m_writers.csv : m_writers.png);
}

void TraceSaveSheet::tell(const QString &text, bool isBad)
{
    const Look look = lookOf(palette());
    m_text->setText(text);
    setTextColour(*m_text, isBad ? look.warning : look.text);
}

} // namespace dx4::panel
