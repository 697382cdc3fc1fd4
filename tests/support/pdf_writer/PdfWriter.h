// Writes PDF files for tests, byte by byte, with a correct cross-reference table.
//
//     PdfPage page;
//     page.strContent = "1 0 0 rg 72 72 100 50 re f";
//     std::string strBytes = MakePdf({page});
//
// Threads: values.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace velko::testing {

// Box sides in points of user space: left, bottom, right, top.
struct PdfBox {
    double dbLeft = 0.0;
    double dbBottom = 0.0;
    double dbRight = 612.0;
    double dbTop = 792.0;
};

struct PdfPage {
    PdfBox mediaBox;
    std::vector<PdfBox> cropBox; // one or none
    int nRotate = 0;             // degrees, as written into the file
    double dbUserUnit = 1.0;
    std::string strContent; // operators; fonts /F1 (Helvetica), images /I1 ... of the document
    std::vector<std::string> annots; // whole dictionaries, or "null", or references
    std::string strExtra;            // further entries of the page dictionary
};

// An 8-bit RGB image, uncompressed; `strPixels` holds 3 bytes for each pixel.
struct PdfImage {
    int nWidth = 1;
    int nHeight = 1;
    std::string strPixels;
};

enum class PdfEncryption { Rc4Bits40, Rc4Bits128, AesBits128 };

struct PdfOptions {
    std::vector<PdfImage> images;
    std::string strCatalogExtra;           // further entries of the catalogue
    std::vector<std::string> extraObjects; // numbered from `kFirstExtraObject` on
    std::string strUserPassword;           // with either it is encrypted
    std::string strOwnerPassword;
    PdfEncryption eEncryption = PdfEncryption::Rc4Bits40;
    std::int32_t nPermissions = -4;
};

inline constexpr int kFirstExtraObject = 10;

// The number of the object of page `nPage`, for references in annotations.
int PdfPageObject(const PdfOptions& options, int nPage);

std::string MakePdf(const std::vector<PdfPage>& pages, const PdfOptions& options = {});

// An annotation with an appearance: a rectangle filled with `strColor` ("1 0 0").
// `nAppearance` is the number of an extra object made by `FormObject`.
std::string AnnotDictionary(const std::string& strSubtype, const PdfBox& rect, int nAppearance);
std::string FormObject(double dbWidth, double dbHeight, const std::string& strColor);

}
