// SPDX-License-Identifier: MIT
// The panel in other languages.
#include "panel_fixture.h"
#include "widget_walk.h"

#include "panel/widgets/number_pad.h"

#include <QTest>
#include <QTranslator>

#include <gtest/gtest.h>

using namespace dx4::panel;

namespace {

enum class Pseudo {
    LongWords, ///< each second letter stands twice
    ManyWords, ///< a word more
    Accents, ///< high letters, and longer
};

/// A language whose texts are 40 % longer than those of English.
class PseudoLanguage : public QTranslator {
public:
    explicit PseudoLanguage(Pseudo kind)
        : m_kind(kind)
    {
    }

    bool isEmpty() const override { return false; }

    QString translate(const char *, const char *text, const char *, int) const override
    {
        const QString english = QString::fromUtf8(text);
        const auto more = (english.size() * 2 + 4) / 5;
        switch (m_kind) {
        case Pseudo::LongWords:
            return longer(english, more, QString());
        case Pseudo::ManyWords:
            return english + QLatin1Char(' ') + QString(more - 1, QLatin1Char('o'));
        case Pseudo::Accents:
            return longer(english, more, QStringLiteral("\u00C4"));
        }
        return english;
    }

private:
    /// Letters stand twice until the text is so much longer; marks such as "%1" stay as they are.
    static QString longer(const QString &english, decltype(english.size()) more,
                          const QString &accent)
    {
        QString text;
        for (int i = 0; i < english.size(); ++i) {
            text += english.at(i);
            const bool isTurn = i % 2 == 1 || english.size() < 4;
            if (more > 0 && isTurn && english.at(i).isLetter()) {
                text += accent.isEmpty() ? QString(english.at(i)) : accent;
                --more;
            }
        }
        return text;
    }

    const Pseudo m_kind;
};

std::string lines(const QStringList &texts)
{
    return texts.join(QLatin1Char('\n')).toStdString();
}

/// What is cut or out of place on each page and sheet, at 800 x 480 with the most that they show.
std::string wrongWithAll()
{
    MadeUpPanel panel(32);
    panel.made.readRunning(1);
    panel.show();
    QStringList wrong = cutTexts(panel.window) + wrongTargets(panel.window);
    panel.made.advance(std::chrono::seconds(12));
    panel.window.refresh();
    wrong += cutTexts(panel.window);
    panel.window.findChild<QAbstractButton *>(QStringLiteral("change"))->click();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    wrong += cutTexts(panel.window) + wrongTargets(panel.window);
    panel.window.close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    wrong += cutTexts(panel.window) + wrongTargets(panel.window) + wrongStop(panel.window);
    return lines(wrong);
}

class German : public ::testing::Test {
protected:
    German()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        m_isLoaded = m_words.load(QLocale(), QStringLiteral("dx4-panel"), QStringLiteral("_"),
                                  QStringLiteral(":/i18n"));
        QCoreApplication::installTranslator(&m_words);
    }

    ~German() override
    {
        QCoreApplication::removeTranslator(&m_words);
        QLocale::setDefault(QLocale::c());
    }

    void SetUp() override { ASSERT_TRUE(m_isLoaded); }

private:
    QTranslator m_words;
    bool m_isLoaded = false;
};

class PseudoLanguages : public ::testing::TestWithParam<Pseudo> { };

} // namespace

TEST_F(German, IsSpokenWithADecimalComma)
{
    MadeUpPanel panel;
    panel.made.readRunning(1);
    panel.show();

    EXPECT_EQ(
        panel.window.findChild<QAbstractButton *>(QStringLiteral("start"))->text().toStdString(),
        "Halten: Start");
    EXPECT_EQ(panel.line.drive(0).frequency.text().toStdString(), "49,98 Hz");
}

TEST_F(German, TakesADecimalComma)
{
    QWidget page;
    NumberPad pad(
        QStringLiteral("Frequenz"), [] { return dx4::host::Duration(0); }, &page);
    pad.ask(QStringLiteral("Hz"), 60.0);

    for (const char key : { '4', '5', ',', '5' })
        pad.type(QLatin1Char(key));

    EXPECT_EQ(pad.number(), 45.5);
}

TEST_F(German, FitsTheSmallestScreen)
{
    EXPECT_EQ(wrongWithAll(), "");
}

TEST_P(PseudoLanguages, FitTheSmallestScreen)
{
    PseudoLanguage language(GetParam());
    QCoreApplication::installTranslator(&language);

    EXPECT_EQ(wrongWithAll(), "");

    QCoreApplication::removeTranslator(&language);
}

INSTANTIATE_TEST_SUITE_P(Panel, PseudoLanguages,
                         ::testing::Values(Pseudo::LongWords, Pseudo::ManyWords, Pseudo::Accents),
                         [](const auto &row) {
                             return row.param == Pseudo::LongWords ? "LongWords"
                                 : row.param == Pseudo::ManyWords  ? "ManyWords"
                                                                   : "Accents";
                         });
