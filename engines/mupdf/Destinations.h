// Links and destinations, read from the file's own objects.
//
// The library's link interface clamps and turns what it finds; a reader needs
// the numbers of the file, in page space.
//
// Threads: under the lock of the document that owns the file.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "document/engine/Action.h"
#include "document/engine/HostServices.h"
#include "engines/mupdf/OpenedFile.h"

namespace velko::engines::mupdf {

// The top of a page's box, for destinations that leave theirs open.
using PageTop = std::function<float(std::int32_t nPage)>;

// The links of a page that lead somewhere or ask for another kind of action.
// Broken and hidden ones are left out. Raises `EngineException` for a failed read.
std::vector<pdf::LinkRecord> ReadLinks(OpenedFile& file, std::int32_t nPage, std::int32_t nPages,
                                       const PageTop& fnPageTop);

// Where an entry leads that says so as a link does: by a destination or an action.
// Nothing for one that does not, or that is broken. Raises `EngineException` for a
// failed read.
pdf::LinkGoal ReadGoal(OpenedFile& file, pdf_obj* pEntry, std::int32_t nPages,
                       const PageTop& fnPageTop);

// Empty for a name that the document does not know or that leads nowhere.
std::shared_ptr<pdf::IAction> ReadNamedDestination(OpenedFile& file, const std::string& strName,
                                                   std::int32_t nPages, const PageTop& fnPageTop);

}
