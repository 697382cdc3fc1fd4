// A reader's place in a document, kept by a host from one opening to the next:
// the file's entry in the recently used list, and the view's property set in the
// local settings under that entry's token. The control looks there when it opens
// the file again.
//
// Errors: failures of the control are raised; the store raises none.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/PropertyValue.h"

namespace velko::vkit {

class PDFViewCtrl;
struct DocIdentity;

struct KeptView {
    std::string strPath;
    Windows::Foundation::PropertyValue::Composite pValues; // not written any more
};

// The view of the open document as it is now, on top of values of the host's
// own; empty without a document or a file. Threads: the UI thread.
std::optional<KeptView> TakeView(
    PDFViewCtrl& control, const Windows::Foundation::Collections::PropertySet& hostValues = {});

// Keeps the entry and the set together, in the order of the calls, whatever the
// clock says; the file becomes the latest one of the list. Threads: any.
void StoreView(const KeptView& view);

// What is stored for the file; empty when nothing is. Threads: any.
std::optional<KeptView> FindView(const std::string& strPath);

// What is stored for the document under another path, where a set says by `WriteIdentity`
// whose it is: of the same file, else of the same bytes, if `fnIsGone` says that the path
// leads nowhere any more. Threads: any.
std::optional<KeptView> FindMovedView(
    const DocIdentity& document, const std::function<bool(const std::string& strPath)>& fnIsGone);

// For an open that failed although the document is good: when the file's view cannot
// be read, for a value of another type, forgets it and gives true; the document
// can be opened without it then. The file stays in the list. Threads: any.
bool ForgetUnreadableView(const std::string& strPath);

// The files of the recently used list, latest first. Threads: any.
std::vector<std::string> RecentFiles();

// Forgets some of them, or all, with their places. Threads: any.
void ForgetViews(const std::vector<std::string>& paths);
void ForgetAllViews();

// True when the two differ in nothing but the time. Threads: any.
bool IsSamePlace(const KeptView& one, const KeptView& other);

}
