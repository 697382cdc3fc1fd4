#include "tests/support/pdf_writer/PdfWriter.h"

#include <mupdf/fitz.h>
#include <mupdf/pdf.h>

#include <array>
#include <cstdio>

namespace velko::testing {

namespace {

// Fixed numbers of the objects before the extra ones.
constexpr int kCatalog = 1;
constexpr int kPages = 2;
constexpr int kFont = 3;

std::string Number(double dbValue) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.9g", dbValue);
    return text.data();
}

std::string Box(const PdfBox& box) {
    return "[" + Number(box.dbLeft) + " " + Number(box.dbBottom) + " " + Number(box.dbRight) + " " +
           Number(box.dbTop) + "]";
}

int MethodOf(PdfEncryption eEncryption) {
    switch (eEncryption) {
        case PdfEncryption::Rc4Bits128:
            return PDF_ENCRYPT_RC4_128;
        case PdfEncryption::AesBits128:
            return PDF_ENCRYPT_AES_128;
        default:
            return PDF_ENCRYPT_RC4_40;
    }
}

// The same document, encrypted.
std::string Encrypted(const std::string& strBytes, const PdfOptions& options) {
    pdf_write_options writing = pdf_default_write_options;
    writing.do_encrypt = MethodOf(options.eEncryption);
    writing.permissions = options.nPermissions;
    const std::string& strOwner =
        options.strOwnerPassword.empty() ? options.strUserPassword : options.strOwnerPassword;
    fz_strlcpy(writing.upwd_utf8, options.strUserPassword.c_str(), sizeof writing.upwd_utf8);
    fz_strlcpy(writing.opwd_utf8, strOwner.c_str(), sizeof writing.opwd_utf8);

    fz_context* const ctx = fz_new_context(nullptr, nullptr, FZ_STORE_DEFAULT);
    fz_stream* const pIn = fz_open_memory(
        ctx, reinterpret_cast<const unsigned char*>(strBytes.data()), strBytes.size());
    pdf_document* const pDoc = pdf_open_document_with_stream(ctx, pIn);
    fz_buffer* const pBuffer = fz_new_buffer(ctx, strBytes.size());
    fz_output* const pOut = fz_new_output_with_buffer(ctx, pBuffer);
    pdf_write_document(ctx, pDoc, pOut, &writing);
    fz_close_output(ctx, pOut);
    unsigned char* pBytes = nullptr;
    const std::size_t nBytes = fz_buffer_storage(ctx, pBuffer, &pBytes);
    std::string strResult(pBytes, pBytes + nBytes);
    fz_drop_output(ctx, pOut);
    fz_drop_buffer(ctx, pBuffer);
    pdf_drop_document(ctx, pDoc);
    fz_drop_stream(ctx, pIn);
    fz_drop_context(ctx);
    return strResult;
}

// Collects objects and their offsets.
class File {
public:
    void Object(int nNumber, const std::string& strBody) {
        if (m_offsets.size() <= static_cast<std::size_t>(nNumber)) {
            m_offsets.resize(static_cast<std::size_t>(nNumber) + 1, 0);
        }
        m_offsets[static_cast<std::size_t>(nNumber)] = m_strBytes.size();
        m_strBytes += std::to_string(nNumber) + " 0 obj\n" + strBody + "\nendobj\n";
    }

    void Stream(int nNumber, const std::string& strEntries, const std::string& strData) {
        Object(nNumber, "<< " + strEntries + " /Length " + std::to_string(strData.size()) +
                            " >>\nstream\n" + strData + "\nendstream");
    }

    std::string Finish() {
        const std::size_t nStart = m_strBytes.size();
        m_strBytes += "xref\n0 " + std::to_string(m_offsets.size()) + "\n0000000000 65535 f \n";
        for (std::size_t i = 1; i < m_offsets.size(); ++i) {
            std::array<char, 32> entry{};
            std::snprintf(entry.data(), entry.size(), "%010zu %05d %c \n", m_offsets[i],
                          m_offsets[i] != 0 ? 0 : 65535, m_offsets[i] != 0 ? 'n' : 'f');
            m_strBytes += entry.data();
        }
        m_strBytes += "trailer\n<< /Size " + std::to_string(m_offsets.size()) + " /Root " +
                      std::to_string(kCatalog) + " 0 R >>\nstartxref\n" + std::to_string(nStart) +
                      "\n%%EOF\n";
        return m_strBytes;
    }

private:
    std::string m_strBytes = "%PDF-1.7\n%\xE2\xE3\xCF\xD3\n";
    std::vector<std::size_t> m_offsets;
};

int FirstImageObject(const PdfOptions& options) {
    return kFirstExtraObject + static_cast<int>(options.extraObjects.size());
}

std::string Resources(const PdfOptions& options) {
    std::string strImages;
    for (std::size_t i = 0; i < options.images.size(); ++i) {
        strImages += " /I" + std::to_string(i + 1) + " " +
                     std::to_string(FirstImageObject(options) + static_cast<int>(i)) + " 0 R";
    }
    return "<< /Font << /F1 " + std::to_string(kFont) + " 0 R >> /XObject <<" + strImages +
           " >> >>";
}

std::string PageDictionary(const PdfPage& page, const PdfOptions& options, int nContent) {
    std::string strBody = "<< /Type /Page /Parent " + std::to_string(kPages) + " 0 R /MediaBox " +
                          Box(page.mediaBox) + " /Resources " + Resources(options) + " /Contents " +
                          std::to_string(nContent) + " 0 R";
    if (!page.cropBox.empty()) {
        strBody += " /CropBox " + Box(page.cropBox.front());
    }
    if (page.nRotate != 0) {
        strBody += " /Rotate " + std::to_string(page.nRotate);
    }
    if (page.dbUserUnit != 1.0) {
        strBody += " /UserUnit " + Number(page.dbUserUnit);
    }
    if (!page.annots.empty()) {
        strBody += " /Annots [";
        for (const std::string& strAnnot : page.annots) {
            strBody += strAnnot + " ";
        }
        strBody += "]";
    }
    return strBody + " " + page.strExtra + " >>";
}

void WritePages(File& file, const std::vector<PdfPage>& pages, const PdfOptions& options) {
    std::string strKids;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const int nObject = PdfPageObject(options, static_cast<int>(i));
        strKids += std::to_string(nObject) + " 0 R ";
        file.Object(nObject, PageDictionary(pages[i], options, nObject + 1));
        file.Stream(nObject + 1, "", pages[i].strContent);
    }
    file.Object(kPages, "<< /Type /Pages /Count " + std::to_string(pages.size()) + " /Kids [" +
                            strKids + "] >>");
}

}

int PdfPageObject(const PdfOptions& options, int nPage) {
    return FirstImageObject(options) + static_cast<int>(options.images.size()) + 2 * nPage;
}

std::string MakePdf(const std::vector<PdfPage>& pages, const PdfOptions& options) {
    File file;
    file.Object(kCatalog, "<< /Type /Catalog /Pages " + std::to_string(kPages) + " 0 R " +
                              options.strCatalogExtra + " >>");
    file.Object(kFont, "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>");
    int nNumber = kFirstExtraObject;
    for (const std::string& strObject : options.extraObjects) {
        file.Object(nNumber++, strObject);
    }
    for (const PdfImage& image : options.images) {
        file.Stream(nNumber++,
                    "/Type /XObject /Subtype /Image /ColorSpace /DeviceRGB /BitsPerComponent 8"
                    " /Width " +
                        std::to_string(image.nWidth) + " /Height " + std::to_string(image.nHeight),
                    image.strPixels);
    }
    WritePages(file, pages, options);
    const bool bOpen = options.strUserPassword.empty() && options.strOwnerPassword.empty();
    return bOpen ? file.Finish() : Encrypted(file.Finish(), options);
}

std::string AnnotDictionary(const std::string& strSubtype, const PdfBox& rect, int nAppearance) {
    return "<< /Type /Annot /Subtype /" + strSubtype + " /F 4 /Rect " + Box(rect) + " /AP << /N " +
           std::to_string(nAppearance) + " 0 R >> >>";
}

std::string FormObject(double dbWidth, double dbHeight, const std::string& strColor) {
    const std::string strArea = " 0 0 " + Number(dbWidth) + " " + Number(dbHeight) + " ";
    const std::string strData = strColor + " rg" + strArea + "re f";
    return "<< /Type /XObject /Subtype /Form /BBox [" + strArea + "] /Length " +
           std::to_string(strData.size()) + " >>\nstream\n" + strData + "\nendstream";
}

}
