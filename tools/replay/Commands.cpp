#include "tools/replay/Commands.h"

#include <unordered_map>

namespace velko::replay {

namespace {

std::unordered_map<std::string, CommandFunction> MakeTable() {
    std::unordered_map<std::string, CommandFunction> table;
    for (const auto area :
         {DocumentCommands(), NavigationCommands(), ViewCommands(), InputCommands(),
          ConversionCommands(), StoreCommands(), SaveCommands(), DiagnosticCommands()}) {
        for (const CommandEntry& entry : area) {
            table.emplace(entry.szOp, entry.fnRun);
        }
    }
    return table;
}

}

CommandFunction FindCommand(const std::string& strOp) {
    static const std::unordered_map<std::string, CommandFunction> table = MakeTable();
    const auto it = table.find(strOp);
    return it == table.end() ? nullptr : it->second;
}

}
