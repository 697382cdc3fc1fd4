// The `state` command's picture of the control and its laid-out pages.
#pragma once

#include "tools/replay/JsonText.h"

namespace velko::replay {

class Session;

JsonObject StateOf(Session& session);

}
