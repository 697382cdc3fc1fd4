#include "widget/OpenFailure.h"

#include <array>
#include <utility>

#include "platform/foundation/Describe.h"

namespace velko::vkit {

namespace {

using velko::common::ErrorCode;

constexpr std::array<std::pair<ErrorCode, const char*>, 8> kReasons{{
    {ErrorCode::e_ErrFile, "The file could not be read to its end."},
    {ErrorCode::e_ErrFormat, "This is not a PDF document, or it is damaged beyond repair."},
    {ErrorCode::e_ErrPassword, "The document is protected with a password."},
    {ErrorCode::e_ErrUnsupported,
     "The file is larger than 2 GiB, which is more than can be shown."},
    {ErrorCode::e_ErrOutOfMemory, "There is not enough memory to open it."},
    {ErrorCode::e_ErrSecurityHandler, "The document is protected in a way that is not supported."},
    {ErrorCode::e_ErrCertificate, "The document is protected with a certificate."},
    {ErrorCode::e_ErrNoRights, "You do not have the right to open this document."},
}};

}

QString ReasonOf(ErrorCode eCode) {
    for (const auto& [eKnown, szReason] : kReasons) {
        if (eKnown == eCode) {
            return QString::fromLatin1(szReason);
        }
    }
    return QStringLiteral("The engine reports %1.")
        .arg(QString::fromLatin1(velko::common::ErrorCodeName(eCode)));
}

QString ReasonOf(const std::exception_ptr& pError) {
    try {
        std::rethrow_exception(pError);
    } catch (const Platform::FileNotFoundException&) {
        return QStringLiteral("There is no such file.");
    } catch (const Platform::AccessDeniedException&) {
        return QStringLiteral("It may not be read, or it is a folder.");
    } catch (const Platform::ReadFaultException&) {
        return QStringLiteral("Reading the file failed.");
    } catch (const Platform::OutOfMemoryException&) {
        return ReasonOf(ErrorCode::e_ErrOutOfMemory);
    } catch (const velko::common::EngineException& failure) {
        return ReasonOf(failure.Code());
    } catch (...) {
        return QString::fromStdString(Platform::Describe(std::current_exception())) +
               QStringLiteral(".");
    }
}

}
