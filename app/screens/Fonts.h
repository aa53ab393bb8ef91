#pragma once

#include <QFont>

/// The program's typefaces. Whatever is missing is replaced by the desktop's own font, in the same
/// size and in the same place. Needs a QGuiApplication; any thread.
namespace quorvane::Fonts {

/// What ordinary text is set in: `base` in the interface's own face, emoji in colour.
[[nodiscard]] QFont text(QFont base);

/// The rounded heavy face at `pixelSize`.
[[nodiscard]] QFont heavy(int pixelSize);

/// The emoji font at `pixelSize`: left to itself, the toolkit takes the outlines that an ordinary
/// font may have for some of them.
[[nodiscard]] QFont emoji(int pixelSize);

/// How thick an outline, in pixels, letters of `family` need to be as heavy as black; 0 for one
/// that has that weight itself.
[[nodiscard]] double outline(const QString& family, double pixelSize);

} // namespace quorvane::Fonts
