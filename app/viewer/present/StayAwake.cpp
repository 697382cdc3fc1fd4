#include "app/viewer/present/StayAwake.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFile>
#include <optional>

namespace velko::viewer {

struct StayAwake::Request {
    bool bEnded = false;
    std::optional<quint32> nCookie; // names it to the desktop
};

namespace {

QDBusMessage Call(const char* szMethod) {
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.ScreenSaver"),
                                          QStringLiteral("/org/freedesktop/ScreenSaver"),
                                          QStringLiteral("org.freedesktop.ScreenSaver"),
                                          QString::fromLatin1(szMethod));
}

// Without one the library would look for a bus for seconds, and may start one.
bool HasBus() {
    return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") ||
           QFile::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + "/bus");
}

void LetSleep(quint32 nCookie) {
    QDBusMessage call = Call("UnInhibit");
    call << nCookie;
    QDBusConnection::sessionBus().send(call);
}

}

StayAwake::StayAwake(const QString& strWhy) : m_pRequest(std::make_shared<Request>()) {
    if (!HasBus()) {
        return;
    }
    QDBusMessage call = Call("Inhibit");
    call << QCoreApplication::applicationName() << strWhy;
    auto* const pWatcher = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(call), QCoreApplication::instance());
    QObject::connect(pWatcher, &QDBusPendingCallWatcher::finished, pWatcher,
                     [pWatcher, pRequest = m_pRequest] {
                         pWatcher->deleteLater();
                         const QDBusPendingReply<quint32> reply = *pWatcher;
                         if (reply.isError()) {
                             return;
                         }
                         pRequest->nCookie = reply.value();
                         if (pRequest->bEnded) {
                             LetSleep(reply.value());
                         }
                     });
}

StayAwake::~StayAwake() {
    m_pRequest->bEnded = true;
    if (m_pRequest->nCookie) {
        LetSleep(*m_pRequest->nCookie);
    }
}

}
