#include "widget/StoreNotice.h"

#include <utility>

#include "platform/concurrency/Scheduler.h"
#include "platform/foundation/Exception.h"
#include "platform/system/Environment.h"
#include "platform/ui/CoreDispatcher.h"

namespace velko::vkit {

using Windows::Storage::ApplicationData;
using Cause = Windows::Storage::StoreFailure::Cause;

StoreNotice::StoreNotice(Tell fnTell) : m_pTell(std::make_shared<const Tell>(std::move(fnTell))) {
    const auto pData = ApplicationData::Current();
    const auto pDispatcher = Platform::Environment()->MainDispatcher();
    const auto fnPost = [pDispatcher,
                         wkTell = std::weak_ptr<const Tell>(m_pTell)](const Failure& failure) {
        pDispatcher->post(concurrency::priority::normal, [wkTell, failure] {
            if (const auto pTell = wkTell.lock()) {
                (*pTell)(failure);
            }
        });
    };
    m_wkData = pData;
    m_token = pData->StoreFailed().add(fnPost);
    if (const auto failure = pData->Failure()) {
        fnPost(*failure);
    }
}

StoreNotice::~StoreNotice() {
    if (const auto pData = m_wkData.lock()) {
        pData->StoreFailed().remove(m_token);
    }
}

QString StoreNotice::TextOf(const Failure& failure) {
    const QString strKept = QStringLiteral("Your settings and your place could not be kept: ");
    switch (failure.eCause) {
        case Cause::DiskFull:
            return strKept + QStringLiteral("the disk is full. Make room on it.");
        case Cause::NotWritable:
            return strKept + QStringLiteral("nothing may be written to the folder of %1.")
                                 .arg(QString::fromStdString(failure.strStore));
        case Cause::Locked:
            return strKept + QStringLiteral("another program holds their file. End that program.");
        case Cause::LaterVersion:
            return strKept + QStringLiteral(
                                 "a later version of this program has written them. "
                                 "Use that version.");
        case Cause::Damaged:
            return QStringLiteral(
                "The file of your settings and places is damaged. They begin "
                "anew, and the damaged file is set aside.");
        case Cause::Failed:
            break;
    }
    return strKept + QStringLiteral("the disk reports a failure. Check it.");
}

}
