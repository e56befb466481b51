// SPDX-License-Identifier: MIT
// Looks at every widget of a window.
#pragma once

#include <QString>
#include <QVector>
#include <QWidget>

/// What is wrong with the places of what can be touched: smaller than 48 px, nearer than 8 px to
/// another one, cut off by the window. One line each.
QStringList wrongTargets(QWidget &window);

/// What is wrong with the stop button: hidden, disabled, too small, covered, not in its corner.
QStringList wrongStop(QWidget &window);

/// Labels and buttons whose text does not fit into them.
QStringList cutTexts(QWidget &window);

/// Class, name, text, place and whether it is enabled of each visible widget, a line each.
QString widgetTree(const QWidget &window);
