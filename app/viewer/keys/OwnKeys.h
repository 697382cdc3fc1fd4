// The reader's own keys of commands, kept in the settings; they hold in all windows.
//
// A value is in force when its setter returns and is stored behind. Commands are kept by
// the names that they have here in the code, keys as text of any language.
// Threads: UI thread only. Errors: what cannot be read as keys counts as none kept.
#pragma once

#include <QKeySequence>
#include <QList>
#include <optional>

#include "app/viewer/Commands.h"

namespace velko::viewer {

class OwnKeys {
public:
    OwnKeys() = delete;
    using Keys = QList<QKeySequence>;

    // Empty for a command with the keys that it comes with; no keys are some, too.
    static std::optional<Keys> Of(Command eCommand);
    static void Keep(Command eCommand, const Keys& keys);
    static void Forget(Command eCommand);
    static void ForgetAll();
};

}
