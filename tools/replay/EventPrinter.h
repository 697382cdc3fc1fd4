// Prints the events of a control as they are raised.
#pragma once

#include <memory>

#include "tools/replay/Output.h"

namespace velko::vkit {
class PDFViewCtrl;
}

namespace velko::replay {

// Subscribes for the control's life; `output` is borrowed and must outlive it.
void PrintEventsOf(velko::vkit::PDFViewCtrl& control, Output& output);

}
