#include "widget/OpenFailure.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/foundation/Exception.h"
#include "platform/storage/FileChangedException.h"
#include "widget/FilePath.h"

namespace velko::vkit {

namespace {

using velko::common::ErrorCode;

constexpr std::uintmax_t kLook = 1024; // bytes in which a document's first and last words stand

bool Holds(std::ifstream& file, std::uintmax_t nFrom, std::string_view strWord) {
    std::string strBytes(kLook, '\0');
    file.clear();
    file.seekg(static_cast<std::streamoff>(nFrom));
    file.read(strBytes.data(), static_cast<std::streamsize>(strBytes.size()));
    return strBytes.find(strWord) != std::string::npos;
}

// Of the many codes several are one and the same to a reader.
const char* WordsOf(ErrorCode eCode) {
    switch (eCode) {
        case ErrorCode::e_ErrFile:
            return "The file could not be read to its end: see whether its disk is still "
                   "connected, and open it again.";
        case ErrorCode::e_ErrFormat:
        case ErrorCode::e_ErrInvalidData:
            return "The document is damaged beyond repair: ask for it anew where it came from.";
        case ErrorCode::e_ErrConflict:
            return "The file was changed while it was opened: open it again.";
        case ErrorCode::e_ErrPassword:
            return "The document is protected with a password: enter it to read the document.";
        case ErrorCode::e_ErrUnsupported:
            return "The file is larger than 2 GiB, which is more than can be shown: split it into "
                   "smaller ones.";
        case ErrorCode::e_ErrOutOfMemory:
            return "There is not enough memory for this document: close other programs and try "
                   "again.";
        case ErrorCode::e_ErrSecurityHandler:
        case ErrorCode::e_ErrNotVDRM:
            return "The document is protected in a way that is not known here: open it with the "
                   "program that its sender names.";
        case ErrorCode::e_ErrCertificate:
            return "The document is protected with a certificate, which cannot be used here: open "
                   "it with the program that its sender names.";
        case ErrorCode::e_ErrNoRights:
        case ErrorCode::e_ErrInvalidACL:
            return "You do not have the right to open this document: ask whoever sent it.";
        case ErrorCode::e_ErrRightsExpired:
            return "Your right to open this document has ended: ask whoever sent it for a new one.";
        case ErrorCode::e_ErrDeviceLimitation:
            return "This document may not be opened on one more machine: open it where you did "
                   "before, or ask whoever sent it.";
        case ErrorCode::e_ErrInvalidUserToken:
        case ErrorCode::e_ErrInvalidClientID:
            return "The server that protects this document does not know you: sign in there and "
                   "try again.";
        case ErrorCode::e_ErrCanNotConnectToServer:
        case ErrorCode::e_ErrCanNotRemoveSecurityFromServer:
        case ErrorCode::e_ErrCanNotGetACL:
        case ErrorCode::e_ErrCanNotSetACL:
        case ErrorCode::e_ErrCanNotUploadDocInfo:
        case ErrorCode::e_ErrCanNotUploadVDRMInfo:
        case ErrorCode::e_ErrCanNotGetClientID:
        case ErrorCode::e_ErrCanNotGetUserToken:
            return "The server that protects this document could not be reached: see to the "
                   "network and try again.";
        case ErrorCode::e_ErrXFALoadError:
            return "The form in this document cannot be shown: open it with the program that it "
                   "was made for.";
        case ErrorCode::e_ErrNotFound:
            return "A part of the document is missing: ask for it anew where it came from.";
        default:
            return "The document could not be worked with: open it again, and if that fails ask "
                   "for it anew where it came from.";
    }
}

}

QString ReasonOf(ErrorCode eCode) {
    return QString::fromLatin1(WordsOf(eCode));
}

QString TroubleWith(const FilePath& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path.Bytes(), error);
    if (std::filesystem::is_directory(status)) {
        return QStringLiteral("It is a folder: open one of the files in it.");
    }
    if (!error && !std::filesystem::is_regular_file(status)) { // reading one may never end
        return QStringLiteral("It is no file that holds a document: open another one.");
    }
    const auto nSize = std::filesystem::file_size(path.Bytes(), error);
    std::ifstream file(path.Bytes(), std::ios::binary);
    if (error || !file) {
        return QStringLiteral("You may not read this file: ask its owner for the right to do so.");
    }
    if (nSize == 0) {
        return QStringLiteral(
            "The file is empty: fetch it again, as it was perhaps not copied to its end.");
    }
    if (!Holds(file, 0, "%PDF-")) {
        return QStringLiteral(
            "This is not a PDF document: open it with a program for files of its kind.");
    }
    if (!Holds(file, nSize - std::min(nSize, kLook), "%%EOF")) {
        return QStringLiteral(
            "The end of the document is missing: fetch it again, as it was perhaps not copied to "
            "its end.");
    }
    return ReasonOf(ErrorCode::e_ErrFormat);
}

QString NoSuchPage(const QString& strTyped, int nPageCount) {
    const QString strNone = QStringLiteral("There is no page “%1”. ").arg(strTyped);
    return nPageCount == 1
               ? strNone + QStringLiteral("The document has one page.")
               : strNone + QStringLiteral("Type a number from 1 to %1.").arg(nPageCount);
}

QString ReasonOf(const std::exception_ptr& pError) {
    try {
        std::rethrow_exception(pError);
    } catch (const velko::common::EngineException& failure) {
        return ReasonOf(failure.Code());
    } catch (const Platform::FileNotFoundException&) {
        return QStringLiteral("There is no such file: perhaps it was moved or has another name.");
    } catch (const Platform::AccessDeniedException&) {
        return QStringLiteral("You may not read this file: ask its owner for the right to do so.");
    } catch (const Platform::FileChangedException&) {
        return ReasonOf(ErrorCode::e_ErrConflict);
    } catch (const Platform::ReadFaultException&) {
        return ReasonOf(ErrorCode::e_ErrFile);
    } catch (const Platform::WriteFaultException&) {
        return QStringLiteral(
            "Writing failed: see whether the disk is connected and may be "
            "written to.");
    } catch (const Platform::DiskFullException&) {
        return QStringLiteral("The disk is full: delete what you do not need.");
    } catch (const Platform::OutOfMemoryException&) {
        return ReasonOf(ErrorCode::e_ErrOutOfMemory);
    } catch (const std::bad_alloc&) {
        return ReasonOf(ErrorCode::e_ErrOutOfMemory);
    } catch (...) {
        return QStringLiteral(
            "Something failed that should not: try again, and if it lasts open the document anew.");
    }
}

}
