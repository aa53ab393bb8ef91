#pragma once

#include <QFont>

#include "platform/Desktop.h"

/// The program's fonts. A missing one is replaced by the desktop's default font in the same
/// size. Needs a QGuiApplication; any thread.
namespace quorvane::Fonts {

/// Which of the desktop's families the functions below use. Main thread, before any of them.
void setFamilies(FontFamilies families);

/// The font of ordinary text: `base` in the program's own family, emoji in colour.
[[nodiscard]] QFont text(QFont base);

/// The rounded heavy font at `pixelSize`.
[[nodiscard]] QFont heavy(int pixelSize);

/// The emoji font at `pixelSize`. Needed because a text font may have some emoji of its own, in
/// outline.
[[nodiscard]] QFont emoji(int pixelSize);

/// Width in pixels of the outline that makes letters of `family` as heavy as black; 0 for every
/// family but the program's own rounded one.
[[nodiscard]] double outline(const QString& family, double pixelSize);

} // namespace quorvane::Fonts
