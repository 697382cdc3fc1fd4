#include "widget/ShownText.h"

#include <QList>

namespace velko::vkit {

namespace {

bool PrintsNothing(char32_t nLetter) {
    switch (QChar::category(nLetter)) {
        case QChar::Other_Control:
        case QChar::Other_Format:
        case QChar::Other_Surrogate:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        default:
            return false;
    }
}

}

QString ShownText(const QString& strText) {
    QString strShown;
    for (const char32_t nLetter : strText.simplified().toUcs4()) {
        strShown += PrintsNothing(nLetter) ? QString(QChar::ReplacementCharacter)
                                           : QString::fromUcs4(&nLetter, 1);
    }
    return strShown;
}

}
