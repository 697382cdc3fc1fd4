// A record that hosts can activate by name; it carries nothing.
#pragma once

namespace velko::vkit {

struct VPdfDocumentInfomation {};

}
