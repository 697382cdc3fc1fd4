#include "platform/qt/QtRuntime.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <thread>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/foundation/TextForm.h"
#include "platform/storage/ApplicationData.h"

namespace Platform::Qt {

namespace {

constexpr unsigned kFewestPoolThreads = 2; // one renders, one loads

}

namespace {

QString::NormalizationForm FormOf(TextForm eForm) {
    switch (eForm) {
        case TextForm::Composed:
            return QString::NormalizationForm_C;
        case TextForm::Decomposed:
            return QString::NormalizationForm_D;
        case TextForm::CompatibleComposed:
            break;
    }
    return QString::NormalizationForm_KC;
}

template <class Text>
void WipeText(Text& text) {
    Wipe(text.data(), static_cast<std::size_t>(text.size()) * sizeof(*text.data()));
}

SecretText NormalizeByQt(const SecretText& text, TextForm eForm) {
    QString strText = QString::fromStdString(text.Text());
    QString strNormal = strText.normalized(FormOf(eForm));
    QByteArray bytes = strNormal.toUtf8();
    const SecretText normal(
        std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    WipeText(strText);
    WipeText(strNormal);
    WipeText(bytes);
    return normal;
}

}

QtRuntime::QtRuntime(QtEnvironment::Options options)
    : m_pDispatcher(QtDispatcher::Create()),
      m_pPool(std::make_shared<concurrency::ThreadPool>(
          std::max(kFewestPoolThreads, std::thread::hardware_concurrency()))),
      m_pEnvironment(std::make_shared<QtEnvironment>(m_pDispatcher, std::move(options))) {
    concurrency::set_task_pool(m_pPool); // from here on nothing raises
    SetTextNormalizer(NormalizeByQt);
    SetEnvironment(m_pEnvironment);
}

QtRuntime::~QtRuntime() {
    m_pPool->stop();
    concurrency::set_task_pool(nullptr);
    SetTextNormalizer(nullptr);
    m_pDispatcher->ShutDown();
    StoreData();
    Windows::Storage::ApplicationData::SetCurrent(nullptr);
    SetEnvironment(nullptr);
}

void QtRuntime::UseData(const std::string& strFolder) {
    StoreData();
    Windows::Storage::ApplicationData::SetCurrent(Windows::Storage::OpenApplicationData(strFolder));
    m_bHasData = true;
}

// What others still hold of the data does not keep it from being stored in time.
void QtRuntime::StoreData() {
    if (m_bHasData) {
        Windows::Storage::ApplicationData::Current()->Flush();
    }
}

void QtRuntime::UseTemporaryData(const std::string& strNameTemplate) {
    QTemporaryDir folder(QDir::temp().filePath(QString::fromStdString(strNameTemplate)));
    if (!folder.isValid()) {
        throw AccessDeniedException("no temporary folder: " + folder.errorString().toStdString());
    }
    UseData(QFile::encodeName(folder.path()).toStdString());
    m_ownFolder = std::move(folder);
}

}
