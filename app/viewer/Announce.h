// Has a screen reader say what a part of the window tells unasked.
//
// Threads: UI thread only.
#pragma once

#include <QString>

class QWidget;

namespace velko::viewer {

// The part counts as an alert from then on, with the text as its name. It is shown.
void Announce(QWidget& part, const QString& strText);

}
