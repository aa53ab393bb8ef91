#include "app/screens/scene/FloatingEmojiField.h"

#include <QQuickWindow>

#include <utility>

#include "app/screens/scene/FloatingEmojiNode.h"

namespace quorvane {

FloatingEmojiField::FloatingEmojiField(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
}

void FloatingEmojiField::setContent(ContentViewModel* content) {
    if (m_content == content)
        return;
    if (m_content)
        m_content->disconnect(this);
    m_content = content;
    if (m_content) {
        connect(m_content, &ContentViewModel::particlesMoved, this,
                &FloatingEmojiField::takeParticles);
        takeParticles();
    }
    emit contentChanged();
}

void FloatingEmojiField::takeParticles() {
    m_particles = m_content->particles();
    m_newer->put(m_particles);
    if (window())
        window()->update();
}

void FloatingEmojiField::itemChange(ItemChange change, const ItemChangeData& data) {
    QQuickItem::itemChange(change, data);
    if (change != ItemDevicePixelRatioHasChanged)
        return;
    m_scaleChanged = true;
    update();
}

QSGNode* FloatingEmojiField::updatePaintNode(QSGNode* old, UpdatePaintNodeData* /*data*/) {
    if (std::exchange(m_scaleChanged, false)) {
        delete old;
        old = nullptr;
    }
    if (old)
        static_cast<FloatingEmojiNode*>(old)->show(m_particles);
    return old ? old : new FloatingEmojiNode(*window(), m_particles, m_newer);
}

} // namespace quorvane
