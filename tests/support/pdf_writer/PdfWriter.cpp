#include "tests/support/pdf_writer/PdfWriter.h"

#include <array>
#include <cstdio>

#include "tests/support/pdf_writer/Ciphers_p.h"

namespace velko::testing {

namespace {

// Fixed numbers of the objects before the extra ones.
constexpr int kCatalog = 1;
constexpr int kPages = 2;
constexpr int kFont = 3;
constexpr int kEncrypt = 4;

constexpr std::array<unsigned char, 32> kPadding = {
    0x28, 0xBF, 0x4E, 0x5E, 0x4E, 0x75, 0x8A, 0x41, 0x64, 0x00, 0x4E, 0x56, 0xFF, 0xFA, 0x01, 0x08,
    0x2E, 0x2E, 0x00, 0xB6, 0xD0, 0x68, 0x3E, 0x80, 0x2F, 0x0C, 0xA9, 0xFE, 0x64, 0x53, 0x69, 0x7A};
constexpr const char* kFileId = "velko test file.";

std::string Number(double dbValue) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.9g", dbValue);
    return text.data();
}

std::string Box(const PdfBox& box) {
    return "[" + Number(box.dbLeft) + " " + Number(box.dbBottom) + " " + Number(box.dbRight) + " " +
           Number(box.dbTop) + "]";
}

std::string Hex(const std::string& strBytes) {
    std::string strHex = "<";
    for (const char c : strBytes) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02X", static_cast<unsigned char>(c));
        strHex += digits.data();
    }
    return strHex + ">";
}

std::string Padded(const std::string& strPassword) {
    std::string strPadded = strPassword;
    strPadded.append(reinterpret_cast<const char*>(kPadding.data()), kPadding.size());
    return strPadded.substr(0, 32);
}

std::string LowBytes(std::uint32_t nValue, int nBytes) {
    std::string strBytes;
    for (int i = 0; i < nBytes; ++i) {
        strBytes += static_cast<char>(nValue >> (8 * i));
    }
    return strBytes;
}

// The standard security handler, revision 2, 40 bits.
class Encryption {
public:
    explicit Encryption(const PdfOptions& options)
        : m_bOn(!options.strUserPassword.empty() || !options.strOwnerPassword.empty()),
          m_nPermissions(options.nPermissions) {
        const std::string& strOwner =
            options.strOwnerPassword.empty() ? options.strUserPassword : options.strOwnerPassword;
        const std::string strUser = Padded(options.strUserPassword);
        m_strOwnerEntry = Rc4(Md5(Padded(strOwner)).substr(0, 5), strUser);
        m_strKey = Md5(strUser + m_strOwnerEntry +
                       LowBytes(static_cast<std::uint32_t>(m_nPermissions), 4) + kFileId)
                       .substr(0, 5);
    }

    bool On() const { return m_bOn; }

    std::string Dictionary() const {
        return "<< /Filter /Standard /V 1 /R 2 /O " + Hex(m_strOwnerEntry) + " /U " +
               Hex(Rc4(m_strKey, Padded({}))) + " /P " + std::to_string(m_nPermissions) + " >>";
    }

    std::string Encrypt(int nObject, const std::string& strData) const {
        if (!m_bOn) {
            return strData;
        }
        const std::string strSeed =
            m_strKey + LowBytes(static_cast<std::uint32_t>(nObject), 3) + LowBytes(0, 2);
        return Rc4(Md5(strSeed).substr(0, 10), strData);
    }

private:
    bool m_bOn;
    std::int32_t m_nPermissions;
    std::string m_strOwnerEntry;
    std::string m_strKey;
};

// Collects objects and their offsets.
class File {
public:
    explicit File(const Encryption& encryption) : m_encryption(encryption) {}

    void Object(int nNumber, const std::string& strBody) {
        if (m_offsets.size() <= static_cast<std::size_t>(nNumber)) {
            m_offsets.resize(static_cast<std::size_t>(nNumber) + 1, 0);
        }
        m_offsets[static_cast<std::size_t>(nNumber)] = m_strBytes.size();
        m_strBytes += std::to_string(nNumber) + " 0 obj\n" + strBody + "\nendobj\n";
    }

    void Stream(int nNumber, const std::string& strEntries, const std::string& strData) {
        const std::string strStored = m_encryption.Encrypt(nNumber, strData);
        Object(nNumber, "<< " + strEntries + " /Length " + std::to_string(strStored.size()) +
                            " >>\nstream\n" + strStored + "\nendstream");
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
                      std::to_string(kCatalog) + " 0 R /ID [" + Hex(kFileId) + Hex(kFileId) + "]";
        if (m_encryption.On()) {
            m_strBytes += " /Encrypt " + std::to_string(kEncrypt) + " 0 R";
        }
        m_strBytes += " >>\nstartxref\n" + std::to_string(nStart) + "\n%%EOF\n";
        return m_strBytes;
    }

private:
    const Encryption& m_encryption;
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
    const Encryption encryption(options);
    File file(encryption);
    file.Object(kCatalog, "<< /Type /Catalog /Pages " + std::to_string(kPages) + " 0 R " +
                              options.strCatalogExtra + " >>");
    file.Object(kFont, "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>");
    if (encryption.On()) {
        file.Object(kEncrypt, encryption.Dictionary());
    }
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
    return file.Finish();
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
