// A program of another host, which has the widget and the engine and nothing else.
#include <QImage>
#include <QProcess>

#include "tests/qt/ViewFixture.h"

namespace velko::testing {

namespace {

class HostTest : public ViewFixture {
protected:
    // What it prints; its picture lies in `m_picture`.
    QString FindWords(const QString& strFile, const QString& strWords) {
        const QString strPicture = m_folder.filePath("picture.png");
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        program.setProcessEnvironment(environment);
        program.start(VELKO_FIND_WORDS, {strFile, strWords, strPicture});
        EXPECT_TRUE(program.waitForFinished(60'000));
        EXPECT_EQ(program.exitCode(), 0);
        m_picture = QImage(strPicture);
        return QString::fromUtf8(program.readAllStandardOutput()).trimmed();
    }
    int ColouredPixels() const {
        int nColoured = 0;
        for (int y = 0; y < m_picture.height(); ++y) {
            for (int x = 0; x < m_picture.width(); ++x) {
                nColoured += m_picture.pixelColor(x, y).saturation() > 60 ? 1 : 0;
            }
        }
        return nColoured;
    }
    QImage m_picture;
};

TEST_F(HostTest, FindsMarksAndCopiesByTheWidgetAlone) {
    PdfPage page;
    page.strContent =
        "BT /F1 24 Tf 72 700 Td 30 TL (One word stands here) Tj T* (and another Word, no sw-) Tj "
        "T* (ord) Tj ET";
    const QString strFile = Write("words.pdf", MakePdf({page, page}));
    EXPECT_EQ(FindWords(strFile, "sword"), "2 hits, copied: sword");
    const int nSword = ColouredPixels();
    EXPECT_EQ(FindWords(strFile, "wörd"), "6 hits, copied: word");
    EXPECT_GT(ColouredPixels(), nSword);
    EXPECT_GT(nSword, 500);
    EXPECT_EQ(FindWords(strFile, "words"), "0 hits, copied:");
    EXPECT_EQ(ColouredPixels(), 0);
}

}

}
