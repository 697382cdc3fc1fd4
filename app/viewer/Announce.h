// Has a screen reader say what a part of the window tells unasked.
//
// Threads: UI thread only.
#pragma once

#include <QString>

class QWidget;

namespace velko::viewer {

// The part is to announce something: it counts as an alert. To be called before it
// is shown for the first time.
void MakeAlert(QWidget& part);

// The part, which is shown, says this text.
void Announce(QWidget& part, const QString& strText);

}
