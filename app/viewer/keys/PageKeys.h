// The keys and gestures of the pages, which are no commands of the window and are not
// changed.
//
// Threads: pure functions.
#pragma once

#include <QKeySequence>
#include <QString>
#include <utility>
#include <vector>

namespace velko::viewer {

struct PageKeySection {
    QString strName;
    std::vector<std::pair<QString, QString>> rows; // what it does, and by which keys
};

const std::vector<PageKeySection>& PageKeySections();

// One that moves the pages or the keys' focus, whatever commands there are. Letters are
// not: a command may have them.
bool IsPageKey(const QKeySequence& key);

}
