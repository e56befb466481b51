// SPDX-License-Identifier: MIT
// Looks at every widget of a window.
#include "widget_walk.h"

#include <QAbstractButton>
#include <QLabel>
#include <QTextStream>

namespace {

constexpr int leastSize = 48; // px
constexpr int leastGap = 8; // px

QRect placeIn(const QWidget &window, const QWidget &widget)
{
    return { widget.mapTo(&window, QPoint(0, 0)), widget.size() };
}

QString named(const QAbstractButton &button)
{
    return QStringLiteral("\"%1\"").arg(button.text());
}

/// Whether a touch in its middle reaches it.
bool isReached(QWidget &window, const QAbstractButton &button)
{
    return window.childAt(placeIn(window, button).center()) == &button;
}

QVector<QAbstractButton *> targets(QWidget &window)
{
    QVector<QAbstractButton *> found;
    for (QAbstractButton *button : window.findChildren<QAbstractButton *>()) {
        if (button->isVisible() && isReached(window, *button))
            found.append(button);
    }
    return found;
}

bool isTooNear(const QRect &a, const QRect &b)
{
    const int gap = leastGap - 1;
    return a.adjusted(-gap, -gap, gap, gap).intersects(b);
}

void writeTree(QTextStream &out, const QWidget &widget, int depth)
{
    const auto *button = qobject_cast<const QAbstractButton *>(&widget);
    const auto *label = qobject_cast<const QLabel *>(&widget);
    const QString text = button ? button->text() : label ? label->text() : QString();
    const QRect place = widget.geometry();
    out << QString(2 * depth, QLatin1Char(' ')) << widget.metaObject()->className() << " '"
        << widget.objectName() << "' \"" << text << "\" " << place.x() << ',' << place.y() << ' '
        << place.width() << 'x' << place.height() << (widget.isEnabled() ? "" : " disabled")
        << '\n';
    for (const QObject *child : widget.children()) {
        const auto *inner = qobject_cast<const QWidget *>(child);
        if (inner && inner->isVisible())
            writeTree(out, *inner, depth + 1);
    }
}

} // namespace

QStringList wrongTargets(QWidget &window)
{
    QStringList wrong;
    const auto all = targets(window);
    for (int i = 0; i < all.size(); ++i) {
        const QRect place = placeIn(window, *all[i]);
        if (place.width() < leastSize || place.height() < leastSize)
            wrong.append(named(*all[i]) + QStringLiteral(" is small"));
        if (!window.rect().contains(place))
            wrong.append(named(*all[i]) + QStringLiteral(" is cut off"));
        for (int j = i + 1; j < all.size(); ++j) {
            if (isTooNear(place, placeIn(window, *all[j])))
                wrong.append(named(*all[i]) + QStringLiteral(" is near ") + named(*all[j]));
        }
    }
    return wrong;
}

QStringList wrongStop(QWidget &window)
{
    const auto *stop = window.findChild<QAbstractButton *>(QStringLiteral("stop"));
    if (!stop || !stop->isVisible() || !stop->isEnabled())
        return { QStringLiteral("there is none to press") };
    QStringList wrong;
    const QRect place = placeIn(window, *stop);
    if (place.width() < 160 || place.height() < 96)
        wrong.append(QStringLiteral("it is small"));
    const QPoint corners[] = { place.topLeft(), place.topRight(), place.bottomLeft(),
                               place.bottomRight(), place.center() };
    for (const QPoint &corner : corners) {
        if (window.childAt(corner) != stop)
            wrong.append(QStringLiteral("it is covered"));
    }
    const QPoint left = window.rect().bottomRight() - place.bottomRight();
    if (left.x() > 16 || left.y() > 16 || !window.rect().contains(place))
        wrong.append(QStringLiteral("it is not in its corner"));
    return wrong;
}

QStringList cutTexts(QWidget &window)
{
    QStringList cut;
    for (const QLabel *label : window.findChildren<QLabel *>()) {
        if (!label->isVisible() || label->text().isEmpty())
            continue;
        const int wanted = label->fontMetrics().horizontalAdvance(label->text());
        const bool isCut = !label->wordWrap() && wanted > label->contentsRect().width();
        if (isCut || label->fontMetrics().height() > label->height() + 2)
            cut.append(label->text());
    }
    for (const QAbstractButton *button : window.findChildren<QAbstractButton *>()) {
        const QSize least = button->minimumSizeHint();
        const bool isCut = least.width() > button->width() || least.height() > button->height();
        if (button->isVisible() && isCut)
            cut.append(QStringLiteral("%1: %2 px wide and %3 high, wants %4 and %5")
                           .arg(button->text())
                           .arg(button->width())
                           .arg(button->height())
                           .arg(least.width())
                           .arg(least.height()));
    }
    return cut;
}

QString widgetTree(const QWidget &window)
{
    QString text;
    QTextStream out(&text);
    writeTree(out, window, 0);
    return text;
}
