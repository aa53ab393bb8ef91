#pragma once

#include <QPointer>
#include <QQuickItem>
#include <QtQmlIntegration/qqmlintegration.h>

#include <memory>
#include <vector>

#include "app/screens/bridge/ContentViewModel.h"
#include "app/screens/scene/RenderMailbox.h"

namespace quorvane {

/// Draws the controller's particles; the mouse passes through. Each particle's picture is painted
/// once, since only positions and opacities change.
class FloatingEmojiField : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(quorvane::ContentViewModel* content READ content WRITE setContent NOTIFY
                   contentChanged REQUIRED FINAL)

public:
    explicit FloatingEmojiField(QQuickItem* parent = nullptr);

    [[nodiscard]] ContentViewModel* content() const { return m_content; }

    void setContent(ContentViewModel* content);

signals:
    void contentChanged();

protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

private:
    void takeParticles();

    QPointer<ContentViewModel> m_content;
    // As they are drawn: the controller's own keep moving while the window cannot be seen.
    std::vector<FloatingEmoji> m_particles;
    std::shared_ptr<RenderMailbox<std::vector<FloatingEmoji>>> m_newer =
        std::make_shared<RenderMailbox<std::vector<FloatingEmoji>>>();
    bool m_scaleChanged = false;
};

} // namespace quorvane
