// The commands of a script, by name.
//
// A command reads all its fields before it touches the control (so a line that
// is not in the format changes nothing), calls the control, and adds its result
// fields. Failures of the control pass through.
// Threads: the UI thread.
#pragma once

#include <span>
#include <string>

#include "tools/replay/CommandFields.h"
#include "tools/replay/JsonText.h"

namespace velko::replay {

class Session;

using CommandFunction = void (*)(Session& session, const CommandFields& fields, JsonObject& result);

struct CommandEntry {
    const char* szOp;
    CommandFunction fnRun;
};

// Empty for a name that is no command.
CommandFunction FindCommand(const std::string& strOp);

// The commands of each area; `FindCommand` looks through all of them.
std::span<const CommandEntry> DocumentCommands();
std::span<const CommandEntry> NavigationCommands();
std::span<const CommandEntry> ViewCommands();
std::span<const CommandEntry> InputCommands();
std::span<const CommandEntry> ConversionCommands();
std::span<const CommandEntry> StoreCommands();
std::span<const CommandEntry> SaveCommands();
std::span<const CommandEntry> DiagnosticCommands();

}
