// A runtime, a folder of documents and helpers for tests of views with the
// real engine.
//
// Threads: the UI thread.
#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <memory>
#include <string>
#include <vector>

#include "engines/mupdf/Register.h"
#include "platform/qt/QtElementWindow.h"
#include "tests/qt/EventLoop.h"
#include "tests/support/pdf_writer/PdfWriter.h"
#include "widget/VelkoPdfView.h"
#include "widget/VelkoRuntime.h"

namespace velko::testing {

class ViewFixture : public ::testing::Test {
protected:
    using View = vkit::VelkoPdfView;

    ViewFixture() {
        vkit::VelkoRuntime::Options options;
        options.fnRegisterEngine = engines::mupdf::RegisterEngine;
        options.strDataFolder = m_folder.filePath("data");
        m_pRuntime = std::make_unique<vkit::VelkoRuntime>(options);
    }

    QString Write(const QString& strName, const std::string& strBytes) {
        QFile file(m_folder.filePath(strName));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(strBytes.data(), static_cast<qint64>(strBytes.size()));
        return file.fileName();
    }

    // `nPages` pages of letter size, each with a red square of an inch at the
    // page's middle and `nStrokes` thin lines that take time to draw.
    QString WritePages(const QString& strName, int nPages, int nStrokes = 0) {
        PdfPage page;
        page.strContent = "1 0 0 rg 270 360 72 72 re f 0 0 1 RG 0.2 w ";
        for (int nStroke = 0; nStroke < nStrokes; ++nStroke) {
            page.strContent += std::to_string(nStroke % 600) + " 0 m " +
                               std::to_string((nStroke * 7) % 600) + " 792 l S ";
        }
        const std::vector<PdfPage> pages(static_cast<std::size_t>(nPages), page);
        return Write(strName, MakePdf(pages));
    }

    // Pages of 30 lines, none of which stands anywhere else, from `nFirst` on.
    static std::vector<PdfPage> TextPages(int nPages, int nFirst = 0) {
        std::vector<PdfPage> pages(static_cast<std::size_t>(nPages));
        for (int n = 0; n < nPages; ++n) {
            std::string& strContent = pages[static_cast<std::size_t>(n)].strContent;
            const std::string strOf = std::to_string(nFirst + n);
            strContent = "BT /F1 14 Tf 20 TL 72 720 Td ";
            for (int nLine = 0; nLine < 30; ++nLine) {
                strContent += "(Line " + std::to_string(nLine) + " tells of matter " + strOf +
                              " in words of its own) Tj T* ";
            }
            strContent += "ET";
        }
        return pages;
    }
    static std::vector<PdfPage> Joined(std::vector<PdfPage> one, const std::vector<PdfPage>& two) {
        one.insert(one.end(), two.begin(), two.end());
        return one;
    }

    // A document that opens by the password "secret" alone.
    QString WriteLocked(int nPages = 1) {
        PdfOptions locked;
        locked.strUserPassword = "secret";
        return Write("locked.pdf",
                     MakePdf(std::vector<PdfPage>(static_cast<std::size_t>(nPages)), locked));
    }

    static bool Settles(View& view) {
        return RunUntil([&] { return view.IsSharp() && !view.Window().IsFrameHeld(); });
    }
    static bool OpenUntilSharp(View& view, const QString& strFile) {
        view.Open(strFile);
        return RunUntil([&] { return view.ViewState() == View::State::Shown && view.IsSharp(); });
    }

    QTemporaryDir m_folder;
    std::unique_ptr<vkit::VelkoRuntime> m_pRuntime;
};

}
