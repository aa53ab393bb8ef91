#pragma once

#include <QFont>

#include "platform/Desktop.h"

/// The program's typefaces. A missing one is replaced by the desktop's default font in the same
/// size. Needs a QGuiApplication; any thread.
namespace quorvane::Fonts {

/// Which of the desktop's families the functions below use. Main thread, before any of them.
void setFamilies(FontFamilies families);

/// The font of ordinary text: `base` in the program's own family, emoji in colour.
[[nodiscard]] QFont text(QFont base);

/// The rounded heavy face at `pixelSize`.
[[nodiscard]] QFont heavy(int pixelSize);

/// The emoji font at `pixelSize`. Where no font is named, Qt draws some emoji in outline from a
/// text font that has them.
[[nodiscard]] QFont emoji(int pixelSize);

/// The outline, in pixels, that makes letters of `family` as heavy as black; 0 for a family that
/// has that weight itself.
[[nodiscard]] double outline(const QString& family, double pixelSize);

} // namespace quorvane::Fonts
