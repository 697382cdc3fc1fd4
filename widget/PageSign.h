// A few words in a box on a page's place, drawn over the page in its frame.
//
// Units: places in device pixels, the box's own measures in Qt's units.
// Threads: UI thread only. Errors: a failure of drawing is raised.
#pragma once

#include <QColor>
#include <QImage>
#include <QString>

#include "platform/graphics/Graphics.h"
#include "viewers/core/Records.h"

namespace velko::vkit {

class PageSign {
public:
    struct Look {
        QColor paper;
        QColor ink;
        bool bFrame = false;
        friend bool operator==(const Look&, const Look&) = default;
    };

    void Show(const QString& strText, const Look& look, double dbPixelRatio);
    void Draw(Windows::Graphics::ID2D1DeviceContext& context,
              const Render_PageScreenOffsetInfo& place);

private:
    void MakePicture(int nWidth);

    QString m_strText;
    Look m_look;
    double m_dbRatio = 1.0;
    QImage m_picture; // null until drawn
};

}
