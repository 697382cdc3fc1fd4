// What a document says of itself: its outline, page labels, properties, fonts and
// attached files, for hosts.
//
// A host asks for it with a dynamic cast on the engine's document. Nothing of it is
// needed to show a page, and nothing is carried out.
// Threads: any but the UI thread: calls wait for the engine and for the file. Results
// are values. Texts are UTF-8, times seconds since 1970 UTC, 0 where none is told.
// Errors: `EngineException`, e_ErrNotLoaded before `Load`, e_ErrParam for a page or a
// file that the document does not have, and the codes of `PDFPage::StartParse` for
// what cannot be read. What is broken in the file is left out.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "document/engine/HostServices.h"
#include "document/engine/PageLabels.h"

namespace velko::pdf {

// An entry of the outline; they come in the order in which the whole tree reads.
struct OutlineEntry : LinkGoal {
    std::string strTitle;
    std::int32_t nDepth = 0; // 0 at the top; from one to the next it grows by 1 at most
    bool bOpen = false;      // what lies under it is shown at first
    bool bBold = false;
    bool bItalic = false;
    std::optional<std::uint32_t> nColor; // 0xRRGGBB
};

struct DocumentProperties {
    std::string strTitle;
    std::string strAuthor;
    std::string strSubject;
    std::string strKeywords;
    std::string strCreator;  // the program that the text was written with
    std::string strProducer; // the program that made the file of it
    std::int64_t nCreated = 0;
    std::int64_t nModified = 0;
    std::string strVersion;    // of the format, such as "1.7"
    std::string strIdentifier; // of the file, hexadecimal digits; kept over its changes
    bool bTagged = false;
};

struct FontFact {
    std::string strName; // without the letters that mark a subset
    std::string strKind; // as the file names it, such as "TrueType" or "CIDFontType0"
    bool bEmbedded = false;
    bool bSubset = false;
    auto operator<=>(const FontFact&) const = default; // NOLINT(modernize-use-nullptr): it has none
};

struct AttachedFile {
    std::string strName; // as the document names it: not safe as a path
    std::string strDescription;
    std::string strMimeType;
    std::int64_t nSize = -1; // bytes; -1 where it is not told
    std::int64_t nCreated = 0;
    std::int64_t nModified = 0;
};

class IDocumentFacts {
public:
    virtual ~IDocumentFacts() = default;

    virtual std::vector<OutlineEntry> GetOutline() = 0;
    virtual PageLabels GetPageLabels() = 0;
    virtual DocumentProperties GetProperties() = 0;

    // The fonts that a page names, what it draws within included, each once.
    virtual std::vector<FontFact> GetFonts(std::int32_t nPageIndex) = 0;

    // The files attached to the document. Their contents are checked by nobody.
    virtual std::vector<AttachedFile> GetAttachedFiles() = 0;
    virtual std::vector<std::uint8_t> LoadAttachedFile(std::int32_t nFile) = 0;
};

}
