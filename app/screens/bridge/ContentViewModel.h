#pragma once

#include <QObject>
#include <QUrl>
#include <QtQmlIntegration/qqmlintegration.h>

#include "app/ContentView.h"
#include "app/LoopingValue.h"
#include "app/screens/bridge/InfoPresenter.h"
#include "app/screens/bridge/RowModels.h"
#include "app/screens/bridge/SpringValue.h"
#include "platform/Desktop.h"
#include "platform/Platform.h"

/// A property of the bridge that shows the controller's observable of the same name: the property,
/// its getter, its change signal, and the subscription that joins the signal to the observable.
#define QUORVANE_OBSERVED(type, name)                                                              \
    Q_PROPERTY(type name READ name NOTIFY name##Changed FINAL)                                     \
public:                                                                                            \
    [[nodiscard]] type name() const {                                                              \
        return forQml(m_content.name().get());                                                     \
    }                                                                                              \
    Q_SIGNAL void name##Changed();                                                                 \
                                                                                                   \
private:                                                                                           \
    Subscription m_##name##Followed = follow(m_content.name(), &ContentViewModel::name##Changed)

namespace quorvane {

/// The one bridge between the controller and the screens: shows its observables as properties and
/// passes on the user's actions. It decides nothing. Main thread only.
class ContentViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the program passes the screens its one instance")
    /// 1 on the screen that is shown, 0 on the others.
    Q_PROPERTY(quorvane::AnimatedNumber hardwareCheckShown READ hardwareCheckShown NOTIFY
                   screenChanged FINAL)
    Q_PROPERTY(quorvane::AnimatedNumber warningShown READ warningShown NOTIFY screenChanged FINAL)
    Q_PROPERTY(quorvane::AnimatedNumber controlPanelShown READ controlPanelShown NOTIFY
                   screenChanged FINAL)
    Q_PROPERTY(quorvane::CheckRowModel* checkRows READ checkRows CONSTANT FINAL)
    Q_PROPERTY(quorvane::ToggleRowModel* toggleRows READ toggleRows CONSTANT FINAL)
    /// The font for texts that are a single emoji. Without it, Qt may take the emoji from a text
    /// font, in outline.
    Q_PROPERTY(QString emojiFamily READ emojiFamily CONSTANT FINAL)
    /// The logo's file; empty if there is none.
    Q_PROPERTY(QUrl logo READ logo CONSTANT FINAL)
    /// 0 to 1, endlessly up and down; updated 30 times a second.
    Q_PROPERTY(double glow READ glow NOTIFY glowChanged FINAL)
    /// Whether endless animations run: the window is visible, and motion is not to be reduced.
    Q_PROPERTY(bool animates READ animates NOTIFY animatesChanged FINAL)
    Q_PROPERTY(bool infoShown READ infoShown NOTIFY infoChanged FINAL)
    Q_PROPERTY(QString infoTitle READ infoTitle NOTIFY infoChanged FINAL)
    Q_PROPERTY(QString infoText READ infoText NOTIFY infoChanged FINAL)

public:
    /// `content`, the platform's services and `desktop` outlive the bridge.
    ContentViewModel(ContentView& content, const Platform& platform, const Desktop& desktop,
                     QObject* parent = nullptr);

    /// Whether any pixel of the window is visible.
    void setSeen(bool seen);

    [[nodiscard]] AnimatedNumber hardwareCheckShown() const;
    [[nodiscard]] AnimatedNumber warningShown() const;
    [[nodiscard]] AnimatedNumber controlPanelShown() const;

    [[nodiscard]] CheckRowModel* checkRows() { return &m_checkRows; }

    [[nodiscard]] ToggleRowModel* toggleRows() { return &m_toggleRows; }

    [[nodiscard]] QString emojiFamily() const;
    [[nodiscard]] QUrl logo() const;

    [[nodiscard]] double glow() const { return m_glow.get(); }

    [[nodiscard]] bool animates() const { return m_seen && !m_desktop.reducesMotion(); }

    [[nodiscard]] bool infoShown() const { return m_info.isShown(); }

    [[nodiscard]] QString infoTitle() const { return m_info.title(); }

    [[nodiscard]] QString infoText() const { return m_info.text(); }

    [[nodiscard]] const std::vector<FloatingEmoji>& particles() const {
        return m_content.floatingEmojis();
    }

    Q_INVOKABLE void runHardwareCheck() { m_content.runHardwareCheck(); }

    Q_INVOKABLE void confirmHardwareCheck() { m_content.confirmHardwareCheck(); }

    Q_INVOKABLE void enterSufferingMode() { m_content.enterSufferingMode(); }

    Q_INVOKABLE void leaveSufferingMode() { m_content.leaveSufferingMode(); }

    /// Writes to the switch of the toggle row `row`.
    Q_INVOKABLE void setOn(int row, bool on);
    /// The info button of the toggle row `row`.
    Q_INVOKABLE void presentInfo(int row);

    Q_INVOKABLE void dismissInfo() { m_info.dismiss(); }

signals:
    void screenChanged();
    void glowChanged();
    void animatesChanged();
    void infoChanged();
    /// The particles have moved, and `animates` is true.
    void particlesMoved();

private:
    static bool forQml(bool value) { return value; }

    static AnimatedNumber forQml(const AnimatedValue& value) { return {value}; }

    [[nodiscard]] Subscription follow(const AnyObservable& observable,
                                      void (ContentViewModel::*changed)());
    [[nodiscard]] AnimatedNumber shown(ContentView::Screen screen) const;
    void moveParticles();
    void updateAnimates();

    ContentView& m_content;
    const Bundle& m_bundle;
    const Desktop& m_desktop;
    CheckRowModel m_checkRows;
    ToggleRowModel m_toggleRows;
    InfoPresenter m_info;
    LoopingValue m_glow;
    bool m_seen = false;
    Subscription m_screenFollowed;
    Subscription m_particlesFollowed;
    Subscription m_motionFollowed;

    QUORVANE_OBSERVED(bool, isChecking);
    QUORVANE_OBSERVED(bool, checkDone);
    QUORVANE_OBSERVED(quorvane::AnimatedNumber, textScale);
};

} // namespace quorvane
