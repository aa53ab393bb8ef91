#pragma once

#include <QFont>
#include <QTextLayout>

#include "app/screens/scene/PictureItem.h"

namespace quorvane {

/// One line of text in the rounded heavy font, in one colour or in a gradient that runs from its
/// left end through its middle to its right end.
class RoundedText : public quorvane::PictureItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged REQUIRED FINAL)
    Q_PROPERTY(int pixelSize READ pixelSize WRITE setPixelSize NOTIFY textChanged REQUIRED FINAL)
    /// Whether the text is an emoji, set in the emoji font.
    Q_PROPERTY(bool emoji READ isEmoji WRITE setEmoji NOTIFY textChanged FINAL)
    /// One colour, or the three of the gradient.
    Q_PROPERTY(QList<QColor> colors MEMBER m_colors NOTIFY colorsChanged FINAL)

public:
    explicit RoundedText(QQuickItem* parent = nullptr);

    [[nodiscard]] QString text() const { return m_text; }

    void setText(const QString& text);

    [[nodiscard]] int pixelSize() const { return m_pixelSize; }

    void setPixelSize(int size);

    [[nodiscard]] bool isEmoji() const { return m_emoji; }

    void setEmoji(bool emoji);

signals:
    void textChanged();
    void colorsChanged();

protected:
    void draw(QPainter& painter) const override;

private:
    void layOut();
    [[nodiscard]] QBrush brush() const;

    QString m_text;
    int m_pixelSize = 16;
    bool m_emoji = false;
    QList<QColor> m_colors{Qt::white};
    QTextLayout m_layout;
};

} // namespace quorvane
