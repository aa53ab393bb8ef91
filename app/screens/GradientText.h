#pragma once

#include <QFont>
#include <QQuickPaintedItem>
#include <QtQmlIntegration/qqmlintegration.h>

namespace quorvane {

/// One line of text whose letters are filled with a gradient that runs from its left end through
/// its middle to its right end.
class GradientText : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text MEMBER m_text WRITE setText NOTIFY textChanged REQUIRED FINAL)
    Q_PROPERTY(QFont font MEMBER m_font WRITE setFont NOTIFY fontChanged FINAL)
    Q_PROPERTY(QColor first MEMBER m_first NOTIFY colorsChanged REQUIRED FINAL)
    Q_PROPERTY(QColor middle MEMBER m_middle NOTIFY colorsChanged REQUIRED FINAL)
    Q_PROPERTY(QColor last MEMBER m_last NOTIFY colorsChanged REQUIRED FINAL)

public:
    explicit GradientText(QQuickItem* parent = nullptr);

    void setText(const QString& text);
    void setFont(const QFont& font);
    void paint(QPainter* painter) override;

signals:
    void textChanged();
    void fontChanged();
    void colorsChanged();

private:
    void measure();

    QString m_text;
    QFont m_font;
    QColor m_first;
    QColor m_middle;
    QColor m_last;
};

} // namespace quorvane
