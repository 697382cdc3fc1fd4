#include "tools/replay/Script.h"

#include <istream>
#include <ostream>
#include <string>

#include "platform/concurrency/Cancellation.h"
#include "platform/foundation/Exception.h"
#include "tools/replay/CommandFields.h"
#include "tools/replay/Commands.h"
#include "tools/replay/Session.h"

namespace velko::replay {

namespace {

JsonObject FailureLine(const CommandFields& fields, const char* szType, const char* szMessage) {
    return JsonObject().Add("error", szType).Add("message", szMessage).Add("op", fields.Op());
}

// What the control answers with an exception is a result like another.
JsonObject Execute(CommandFunction fnCommand, Session& session, const CommandFields& fields) {
    try {
        JsonObject result;
        fnCommand(session, fields, result);
        return JsonObject().Add("op", fields.Op()).Append(result);
    } catch (const FormatError&) {
        throw;
    } catch (const Platform::Exception& error) {
        return FailureLine(fields, error.TypeName(), error.what());
    } catch (const concurrency::task_canceled& error) {
        return FailureLine(fields, "concurrency::task_canceled", error.what());
    } catch (const std::exception& error) {
        return FailureLine(fields, "std::exception", error.what());
    }
}

void RunLine(const std::string& strLine, Session& session) {
    const CommandFields fields = CommandFields::Parse(strLine);
    const CommandFunction fnCommand = FindCommand(fields.Op());
    if (fnCommand == nullptr) {
        throw FormatError("unknown op \"" + fields.Op() + "\"");
    }
    session.Out().Print(Execute(fnCommand, session, fields));
}

}

int RunScript(std::istream& input, Session& session, std::ostream& errors) {
    std::string strLine;
    for (std::int64_t nLine = 1; std::getline(input, strLine); ++nLine) {
        try {
            RunLine(strLine, session);
        } catch (const FormatError& error) {
            errors << "line " << nLine << ": " << error.what() << std::endl;
            return kExitFormat;
        }
    }
    return kExitOk;
}

}
