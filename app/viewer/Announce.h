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

// What the part says: at once when it is shown already, else when it comes up.
void Announce(QWidget& part, const QString& strText);

}
