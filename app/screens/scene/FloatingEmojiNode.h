#pragma once

#include <QSGNode>

#include <memory>
#include <vector>

#include "app/FloatingEmoji.h"
#include "app/screens/scene/RenderMailbox.h"

class QQuickWindow;

namespace quorvane {

/// The scene's side of the particles, which all have one picture each. On the thread that draws, as
/// the toolkit's nodes are.
class FloatingEmojiNode final : public QSGNode {
public:
    using Particles = std::vector<FloatingEmoji>;

    /// Shows each of the `newer` particles by itself.
    FloatingEmojiNode(QQuickWindow& window, const Particles& particles,
                      std::shared_ptr<RenderMailbox<Particles>> newer);
    ~FloatingEmojiNode() override;

    /// As many as there were at first, and of the same sizes.
    void show(const Particles& particles);

    void preprocess() override;

private:
    class Picture;

    std::shared_ptr<RenderMailbox<Particles>> m_newer;
    std::vector<Picture> m_pictures;
};

} // namespace quorvane
