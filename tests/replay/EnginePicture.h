// What the engine draws of a page, asked directly: the picture that the screen
// is to show.
#pragma once

#include <QImage>
#include <string>

namespace velko::testing {

// The page of the file stretched over `nWidth` by `nHeight` pixels on white.
// Raises what the engine raises.
QImage EnginePicture(const std::string& strPath, int nPage, int nWidth, int nHeight);

}
