// The saved view of a document: the names and types of what is kept, where it is
// found, and one reading of it.
//
// A host keeps the set in the local settings, under the token of the file's entry
// in the recently used list; the entry's metadata is the file's path.
// Threads: any.
#pragma once

#include <cstdint>
#include <string>

#include "platform/foundation/PropertyValue.h"

namespace velko::vkit {

namespace SavedViewKey {
inline constexpr const char* kFileName = "FileName";                       // text
inline constexpr const char* kFileTime = "FileTime";                       // 64-bit, of the saving
inline constexpr const char* kFileSize = "FileSize";                       // unsigned 32-bit, bytes
inline constexpr const char* kPasswordProtected = "PasswordProtected";     // text, "0" or "1"
inline constexpr const char* kViewState = "ViewState";                     // 32-bit
inline constexpr const char* kCurrentPageIndex = "CurrentPageIndex";       // 32-bit
inline constexpr const char* kRotate = "Rotate";                           // 32-bit
inline constexpr const char* kScale = "Scale";                             // double
inline constexpr const char* kOffsetX = "OffsetX";                         // double
inline constexpr const char* kOffsetY = "OffsetY";                         // double
inline constexpr const char* kRotatedScreen = "RotatedScreen";             // boolean
inline constexpr const char* kIsSDToLocalFile = "IsSDToLocalFile";         // boolean
inline constexpr const char* kReflowScale = "ReflowScale";                 // double
inline constexpr const char* kIsReflowShowPicture = "IsReflowShowPicture"; // boolean
}

// One reading of a saved view.
struct PDFViewerState {
    std::int32_t ViewState = 1;        // layout mode; 0 is shown as single page
    std::int32_t CurrentPageIndex = 0; // from 0: the topmost page on the screen
    double Scale = 1.0;      // 1.0 = 100 %: an inch of the page is one by the display's DPI
    std::int32_t Rotate = 0; // quarter turns clockwise, 0 to 3; not brought back
    // Where that page's top left corner stands from the canvas's, in device pixels,
    // Y down: negative where the page begins above or left of the screen.
    double OffsetX = 0.0;
    double OffsetY = 0.0;
    bool IsSDToLocalFile = false; // the host's
    double ReflowScale = 2.5;     // of a reflowed page, as `Scale`
    bool IsReflowShowPicture = true;

    // What is absent keeps its default. Scale and offsets do so too when the canvas
    // does not lie now (`bIsWide`: wider than high) as it did when they were saved.
    // Raises `InvalidCastException` for a value of another type, except the last two,
    // which count as absent then.
    static PDFViewerState ReadFrom(const Windows::Foundation::Collections::PropertySet& values,
                                   bool bIsWide);
};

// Whether the canvas was wider than high when the view was saved; raises as above.
bool WasSavedWide(const Windows::Foundation::Collections::PropertySet& values);

// Writes the page and where it stands; see the record above for what they are.
void WriteSavedPlace(Windows::Foundation::Collections::PropertySet& values, std::int32_t nPageIndex,
                     double dbOffsetX, double dbOffsetY);

// Writes what belongs to reflowed text.
void WriteSavedReflow(Windows::Foundation::Collections::PropertySet& values, double dbScale,
                      bool bShowPicture);

// The token under which the file's view is kept, that of the first entry of its
// path; empty when there is none.
std::string FindSavedViewToken(const std::string& strPath);

// The set that is kept for the file; empty when there is none.
Windows::Foundation::PropertyValue::Composite FindSavedView(const std::string& strPath);

}
